#include "input/tap_thread.h"

#include <utility>

#include "input/tap_state.h"
#include "platform/event_tap.h"

namespace ferrowyn {

namespace {

/// How long the loop runs before the thread looks whether it is still wanted, should a wake-up ever get lost.
constexpr Seconds runSlice{1.0};

}  // namespace

TapThreadContext::TapThreadContext(std::shared_ptr<EventTap> tap, std::shared_ptr<TapRunLoopSource> source)
    : tap_(std::move(tap)), source_(std::move(source)) {}

void TapThreadContext::announce(std::shared_ptr<TapRunLoop> runLoop) {
    promise_.set_value(std::move(runLoop));
}

std::shared_ptr<TapRunLoop> TapThreadContext::waitForRunLoop(Seconds timeout) const {
    if (runLoop_.wait_for(timeout) != std::future_status::ready) {
        return nullptr;
    }
    return runLoop_.get();
}

void runTapThread(EventTaps& eventTaps, TapThreadContext& context, const TapState& state) {
    const std::shared_ptr<TapRunLoop> runLoop = eventTaps.currentRunLoop();
    context.source().addTo(*runLoop);
    context.tap().setEnabled(true);
    context.announce(runLoop);
    while (state.keepRunning()) {
        runLoop->runFor(runSlice);
    }
}

}  // namespace ferrowyn
