#include "input/tap_state.h"

#include <utility>

#include "platform/event_tap.h"

namespace ferrowyn {

TapState::Snapshot TapState::snapshot() const {
    const std::lock_guard guard(lock_);
    return {modifierFlag_, isSwitcherVisible_, isHoldModeActive_};
}

void TapState::setModifier(SwitcherModifier modifier) {
    std::shared_ptr<EventTap> tap;
    {
        const std::lock_guard guard(lock_);
        modifierFlag_ = flagMask(modifier);
        tap = tapPort_;
    }
    if (tap != nullptr) {
        tap->setTrigger(modifier);
    }
}

void TapState::setSwitcherVisible(bool isVisible) {
    const std::lock_guard guard(lock_);
    isSwitcherVisible_ = isVisible;
}

void TapState::setHoldModeActive(bool isActive) {
    const std::lock_guard guard(lock_);
    isHoldModeActive_ = isActive;
}

void TapState::passSessionOn() const {
    std::shared_ptr<EventTap> tap;
    bool isOpen = false;
    {
        const std::lock_guard guard(lock_);
        tap = tapPort_;
        isOpen = isSwitcherVisible_;
    }
    if (tap != nullptr) {
        tap->setSessionOpen(isOpen);
    }
}

void TapState::setKeepRunning(bool keepRunning) {
    const std::lock_guard guard(lock_);
    keepRunning_ = keepRunning;
}

bool TapState::keepRunning() const {
    const std::lock_guard guard(lock_);
    return keepRunning_;
}

void TapState::setReenableRequested(bool isRequested) {
    const std::lock_guard guard(lock_);
    reenableRequested_ = isRequested;
}

bool TapState::reenableRequested() const {
    const std::lock_guard guard(lock_);
    return reenableRequested_;
}

void TapState::setTapPort(std::shared_ptr<EventTap> tap) {
    // The old tap leaves with the parameter, after the lock is released: removing a tap may take its time.
    const std::lock_guard guard(lock_);
    tapPort_.swap(tap);
}

void TapState::noteTapDisabled() {
    const std::lock_guard guard(lock_);
    isSwitcherVisible_ = false;
    isHoldModeActive_ = false;
    reenableRequested_ = true;
}

void TapState::noteStop() {
    const std::lock_guard guard(lock_);
    isSwitcherVisible_ = false;
    isHoldModeActive_ = false;
    keepRunning_ = false;
}

}  // namespace ferrowyn
