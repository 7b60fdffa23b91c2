#include "platform/simulated/simulated_event_tap.h"

#include <utility>

#include "platform/simulated/simulated_tap_event.h"

namespace ferrowyn {

SimulatedEventTap::SimulatedEventTap(std::uint64_t mask, SwitcherModifier trigger, EventTaps::Callback callback)
    : mask_(mask), callback_(std::move(callback)), trigger_(trigger) {}

void SimulatedEventTap::setEnabled(bool enabled) {
    const std::lock_guard lock(lock_);
    isEnabled_ = enabled && isValid_;
}

bool SimulatedEventTap::isEnabled() const {
    const std::lock_guard lock(lock_);
    return isEnabled_;
}

void SimulatedEventTap::invalidate() {
    const std::lock_guard lock(lock_);
    isValid_ = false;
    isEnabled_ = false;
    isSessionOpen_ = false;
}

void SimulatedEventTap::setTrigger(SwitcherModifier modifier) {
    const std::lock_guard lock(lock_);
    trigger_ = modifier;
}

void SimulatedEventTap::setSessionOpen(bool isOpen) {
    const std::lock_guard lock(lock_);
    isSessionOpen_ = isOpen;
}

bool SimulatedEventTap::isValid() const {
    const std::lock_guard lock(lock_);
    return isValid_;
}

SwitcherModifier SimulatedEventTap::trigger() const {
    const std::lock_guard lock(lock_);
    return trigger_;
}

bool SimulatedEventTap::isSessionOpen() const {
    const std::lock_guard lock(lock_);
    return isSessionOpen_;
}

void SimulatedEventTap::setAttached(bool isAttached) {
    const std::lock_guard lock(lock_);
    isAttached_ = isAttached;
}

std::optional<TapVerdict> SimulatedEventTap::deliver(const TapEvent& event) {
    {
        const std::lock_guard lock(lock_);
        const auto typeBit = std::uint64_t{1} << static_cast<std::uint32_t>(event.type());
        if (!isEnabled_ || !isAttached_ || (mask_ & typeBit) == 0) {
            return std::nullopt;
        }
    }
    // Without the lock: the callback may well speak to the tap.
    return callback_(event);
}

void SimulatedEventTap::disableBySystem(TapEvent::Type reason) {
    {
        const std::lock_guard lock(lock_);
        if (!isValid_ || !isAttached_) {
            return;
        }
        isEnabled_ = false;
    }
    static_cast<void>(callback_(SimulatedTapEvent(reason, {})));
}

}  // namespace ferrowyn
