#pragma once

#include <future>
#include <memory>

#include "platform/main_loop.h"

namespace ferrowyn {

class EventTap;
class EventTaps;
class TapRunLoop;
class TapRunLoopSource;
class TapState;

/// What the main thread and one tap thread hand each other. Shared, because a thread that is slow to start may need it
/// after the main thread has given up waiting.
class TapThreadContext {
public:
    TapThreadContext(std::shared_ptr<EventTap> tap, std::shared_ptr<TapRunLoopSource> source);

    [[nodiscard]] EventTap& tap() const { return *tap_; }
    [[nodiscard]] TapRunLoopSource& source() const { return *source_; }

    /// The thread serves the tap with this loop from now on. Tap thread, once.
    void announce(std::shared_ptr<TapRunLoop> runLoop);
    /// The thread's loop; null when it has not announced one within `timeout`. Main thread.
    [[nodiscard]] std::shared_ptr<TapRunLoop> waitForRunLoop(Seconds timeout) const;

private:
    std::shared_ptr<EventTap> tap_;
    std::shared_ptr<TapRunLoopSource> source_;
    std::promise<std::shared_ptr<TapRunLoop>> promise_;
    std::shared_future<std::shared_ptr<TapRunLoop>> runLoop_{promise_.get_future()};
};

/// The body of the tap thread: serves the tap until `TapState::keepRunning` is false.
void runTapThread(EventTaps& eventTaps, TapThreadContext& context, const TapState& state);

}  // namespace ferrowyn
