#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <condition_variable>
#include <mutex>

#include "platform/event_tap.h"
#include "platform/macos/mac_event_taps.h"
#include "platform/macos/owned.h"

namespace ferrowyn {

/// A thread's run loop as the tap thread uses it.
class MacTapRunLoop final : public TapRunLoop {
public:
    MacTapRunLoop(Owned<CFRunLoopRef> loop, MacEventTaps::InPool inPool)
        : loop_(std::move(loop)), inPool_(std::move(inPool)) {}

    void runFor(Seconds slice) override;
    void stop() override;

    /// Borrowed from this.
    [[nodiscard]] CFRunLoopRef loop() const { return loop_.get(); }

private:
    [[nodiscard]] bool takeStop();

    Owned<CFRunLoopRef> loop_;
    MacEventTaps::InPool inPool_;
    std::mutex lock_;
    std::condition_variable stopped_;
    bool isStopped_ = false;
};

}  // namespace ferrowyn
