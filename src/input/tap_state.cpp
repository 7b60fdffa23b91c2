#include "input/tap_state.h"

#include <utility>

#include "platform/keyboard_tap.h"

namespace ferrowyn {

TapState::Snapshot TapState::snapshot() const {
    const std::scoped_lock guard(lock_);
    return {modifierFlag_, isSwitcherVisible_, isHoldModeActive_};
}

void TapState::setModifier(SwitcherModifier modifier) {
    KeyboardTap* tap = nullptr;
    {
        const std::scoped_lock guard(lock_);
        modifierFlag_ = flagMask(modifier);
        tap = tapPort_;
    }
    if (tap != nullptr) {
        tap->setTrigger(modifier);
    }
}

void TapState::openSession(bool isHoldModeActive) {
    {
        const std::scoped_lock guard(lock_);
        if (!session_) {
            session_ = request_ ? std::exchange(request_, std::nullopt) : nextSession();
        }
        isSwitcherVisible_ = true;
        isHoldModeActive_ = isHoldModeActive;
    }
    tellTapOfSession();
}

void TapState::closeSession() {
    KeyboardTap* tap = nullptr;
    std::optional<TapSession> session;
    {
        const std::scoped_lock guard(lock_);
        isSwitcherVisible_ = false;
        isHoldModeActive_ = false;
        session = std::exchange(session_, std::nullopt);
        tap = tapPort_;
    }
    if (tap != nullptr && session) {
        tap->closeSession(*session);
    }
}

void TapState::tellTapOfSession() const {
    KeyboardTap* tap = nullptr;
    std::optional<TapSession> session;
    {
        const std::scoped_lock guard(lock_);
        session = session_;
        tap = tapPort_;
    }
    if (tap != nullptr && session) {
        tap->openSession(*session);
    }
}

void TapState::setHoldModeActive(bool isActive) {
    const std::scoped_lock guard(lock_);
    isHoldModeActive_ = isActive;
}

TapSession TapState::requestSession() {
    const std::scoped_lock guard(lock_);
    return nextSession();
}

TapSession TapState::nextSession() {
    return TapSession{++sessionCount_};
}

bool TapState::beginRequest(TapSession request) {
    KeyboardTap* tap = nullptr;
    {
        const std::scoped_lock guard(lock_);
        tap = tapPort_;
    }
    if (tap != nullptr && tap->hasGivenUp(request)) {
        tap->closeSession(request);
        return false;
    }
    const std::scoped_lock guard(lock_);
    request_ = request;
    return true;
}

void TapState::endRequest() {
    KeyboardTap* tap = nullptr;
    std::optional<TapSession> unanswered;
    {
        const std::scoped_lock guard(lock_);
        unanswered = std::exchange(request_, std::nullopt);
        tap = tapPort_;
    }
    if (tap != nullptr && unanswered) {
        tap->closeSession(*unanswered);
    }
}

void TapState::setReenableRequested(bool isRequested) {
    const std::scoped_lock guard(lock_);
    reenableRequested_ = isRequested;
}

bool TapState::reenableRequested() const {
    const std::scoped_lock guard(lock_);
    return reenableRequested_;
}

void TapState::setTapPort(KeyboardTap* tap) {
    const std::scoped_lock guard(lock_);
    tapPort_ = tap;
}

void TapState::noteTapDisabled() {
    const std::scoped_lock guard(lock_);
    isSwitcherVisible_ = false;
    isHoldModeActive_ = false;
    reenableRequested_ = true;
}

}  // namespace ferrowyn
