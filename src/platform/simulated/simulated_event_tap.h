#pragma once

#include <mutex>
#include <optional>

#include "platform/event_tap.h"

namespace ferrowyn {

/// A tap that gets the keys a test presses. Any thread.
class SimulatedEventTap final : public EventTap {
public:
    SimulatedEventTap(std::uint64_t mask, SwitcherModifier trigger, EventTaps::Callback callback);

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override;
    void invalidate() override;
    void setTrigger(SwitcherModifier modifier) override;
    void setSessionOpen(bool isOpen) override;

    [[nodiscard]] bool isValid() const;
    [[nodiscard]] SwitcherModifier trigger() const;
    [[nodiscard]] bool isSessionOpen() const;
    void setAttached(bool isAttached);

    /// Asks the callback, when the tap is enabled, served by a loop and made for this type of event.
    [[nodiscard]] std::optional<TapVerdict> deliver(const TapEvent& event);
    /// Disables the tap first, then tells it, as the system does.
    void disableBySystem(TapEvent::Type reason);

private:
    mutable std::mutex lock_;
    const std::uint64_t mask_;
    const EventTaps::Callback callback_;
    SwitcherModifier trigger_;
    bool isEnabled_ = false;
    bool isValid_ = true;
    bool isAttached_ = false;
    bool isSessionOpen_ = false;
};

}  // namespace ferrowyn
