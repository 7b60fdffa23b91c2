#include "platform/x11/x11_tap_run_loop.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "platform/x11/x11_event_tap.h"

namespace ferrowyn {

namespace {

using Clock = X11TapEngine::Clock;

/// Until the moment, rounded up, so that nothing is looked at a little too early again and again.
int pollTimeout(Clock::time_point end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

Clock::time_point earliestDeadline(const std::vector<std::shared_ptr<X11EventTap>>& taps, Clock::time_point end) {
    for (const auto& tap : taps) {
        if (const auto deadline = tap->deadline()) {
            end = std::min(end, *deadline);
        }
    }
    return end;
}

}  // namespace

void X11TapRunLoop::runFor(Seconds slice) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(slice);
    do {
        {
            const std::lock_guard guard(lock_);
            if (isStopped_) {
                isStopped_ = false;
                return;
            }
        }
        const auto served = taps();
        std::vector<pollfd> descriptors{{bell_.fileDescriptor(), POLLIN, 0}};
        for (const auto& tap : served) {
            tap->serve();
            descriptors.push_back({tap->mailboxDescriptor(), POLLIN, 0});
            descriptors.push_back({tap->connectionDescriptor(), POLLIN, 0});
            descriptors.push_back(tap->inputMethodDescriptor());
            descriptors.push_back({tap->guardDescriptor(), POLLIN, 0});
        }
        // An interrupted wait is a short one; every pass looks at everything.
        poll(descriptors.data(), descriptors.size(), pollTimeout(earliestDeadline(served, end)));
        bell_.acknowledge();
    } while (Clock::now() < end);
}

void X11TapRunLoop::stop() {
    {
        const std::lock_guard guard(lock_);
        isStopped_ = true;
    }
    bell_.wake();
}

void X11TapRunLoop::add(const std::shared_ptr<X11EventTap>& tap) {
    {
        const std::lock_guard guard(lock_);
        taps_.push_back(tap);
    }
    bell_.wake();
}

void X11TapRunLoop::remove(const std::shared_ptr<X11EventTap>& tap) {
    {
        const std::lock_guard guard(lock_);
        std::erase(taps_, tap);
    }
    bell_.wake();
}

std::vector<std::shared_ptr<X11EventTap>> X11TapRunLoop::taps() const {
    const std::lock_guard guard(lock_);
    return taps_;
}

void X11TapRunLoopSource::addTo(TapRunLoop& loop) {
    tap_->noteServingThread();
    dynamic_cast<X11TapRunLoop&>(loop).add(tap_);
}

void X11TapRunLoopSource::removeFrom(TapRunLoop& loop) {
    dynamic_cast<X11TapRunLoop&>(loop).remove(tap_);
}

}  // namespace ferrowyn
