#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <condition_variable>
#include <mutex>

#include "platform/event_tap.h"
#include "platform/macos/owned.h"

namespace ferrowyn {

/// A thread's run loop as the tap thread uses it.
class MacTapRunLoop final : public TapRunLoop {
public:
    explicit MacTapRunLoop(Owned<CFRunLoopRef> loop) : loop_(std::move(loop)) {}

    void runFor(Seconds slice) override;
    void stop() override;

    /// Borrowed from this.
    [[nodiscard]] CFRunLoopRef loop() const { return loop_.get(); }

private:
    [[nodiscard]] bool takeStop();

    Owned<CFRunLoopRef> loop_;
    std::mutex lock_;
    std::condition_variable stopped_;
    bool isStopped_ = false;
};

}  // namespace ferrowyn
