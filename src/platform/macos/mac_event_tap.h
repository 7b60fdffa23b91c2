#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <memory>
#include <mutex>

#include "platform/event_tap.h"
#include "platform/macos/owned.h"

namespace ferrowyn {

/// A tap of the session's keyboard, ahead of all others. It filters every event, so it needs to know neither the
/// trigger nor the session. Thread-safe.
class MacEventTap final : public EventTap {
public:
    /// Null when the system refuses.
    [[nodiscard]] static std::shared_ptr<MacEventTap> create(std::uint64_t mask, EventTaps::Callback callback);
    ~MacEventTap() override;
    MacEventTap(const MacEventTap&) = delete;
    MacEventTap& operator=(const MacEventTap&) = delete;

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override;
    void invalidate() override;
    void setTrigger(SwitcherModifier /*modifier*/) override {}
    void setSessionOpen(bool /*isOpen*/) override {}

    /// Whether a thread's loop has the tap's source. Without one the system is not asked to enable the tap: every key
    /// would wait for a verdict that nobody gives.
    void setServed(bool isServed);

    /// Borrowed from this.
    [[nodiscard]] CFMachPortRef port() const { return port_.get(); }

private:
    explicit MacEventTap(EventTaps::Callback callback) : callback_(std::move(callback)) {}

    static CGEventRef receive(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo);

    EventTaps::Callback callback_;
    Owned<CFMachPortRef> port_;
    mutable std::mutex lock_;
    bool isValid_ = true;
    bool isServed_ = false;
    /// What was last asked for; the system may have disabled the tap since.
    bool wantsEnabled_ = false;
};

}  // namespace ferrowyn
