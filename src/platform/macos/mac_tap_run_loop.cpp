#include "platform/macos/mac_tap_run_loop.h"

#include <utility>

namespace ferrowyn {

void MacTapRunLoop::runFor(Seconds slice) {
    // The system forgets a stop that comes while the loop is not running.
    if (takeStop()) {
        return;
    }
    CFRunLoopRunResult result = kCFRunLoopRunFinished;
    // What the loop itself leaves behind goes with each slice.
    inPool_([&] { result = CFRunLoopRunInMode(kCFRunLoopDefaultMode, slice.count(), false); });
    if (result == kCFRunLoopRunFinished) {
        // A loop without a source, such as after the tap's port has gone, returns at once, and the thread that runs
        // it again and again would turn as fast as it can.
        std::unique_lock lock(lock_);
        stopped_.wait_for(lock, slice, [this] { return isStopped_; });
    }
    static_cast<void>(takeStop());
}

void MacTapRunLoop::stop() {
    {
        const std::lock_guard lock(lock_);
        isStopped_ = true;
    }
    stopped_.notify_all();
    CFRunLoopStop(loop_.get());
}

bool MacTapRunLoop::takeStop() {
    const std::lock_guard lock(lock_);
    return std::exchange(isStopped_, false);
}

}  // namespace ferrowyn
