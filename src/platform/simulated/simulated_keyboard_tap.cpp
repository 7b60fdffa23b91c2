#include "platform/simulated/simulated_keyboard_tap.h"

namespace ferrowyn {

SimulatedKeyboardTap::SimulatedKeyboardTap(SimulatedKeyboardTaps& taps, SwitcherModifier trigger, TapCallback callback)
    : taps_(taps), callback_(std::move(callback)), trigger_(trigger) {}

SimulatedKeyboardTap::~SimulatedKeyboardTap() {
    taps_.noteRemoved(*this);
}

void SimulatedKeyboardTap::setEnabled(bool enabled) {
    const std::scoped_lock lock(lock_);
    isEnabled_ = enabled;
}

bool SimulatedKeyboardTap::isEnabled() const {
    const std::scoped_lock lock(lock_);
    return isEnabled_;
}

void SimulatedKeyboardTap::setTrigger(SwitcherModifier modifier) {
    const std::scoped_lock lock(lock_);
    trigger_ = modifier;
}

void SimulatedKeyboardTap::openSession(TapSession session) {
    {
        const std::scoped_lock lock(lock_);
        if (!givenUp_.contains(session)) {
            session_ = session;
            if (request_ == session) {
                request_.reset();
            }
            return;
        }
    }
    // Without the lock, because the callback may call the tap.
    static_cast<void>(callback_(SimulatedTapEvent(TapEvent::Type::disabledByUserInput, {})));
}

void SimulatedKeyboardTap::closeSession(TapSession session) {
    const std::scoped_lock lock(lock_);
    givenUp_.erase(session);
    if (session_ == session) {
        session_.reset();
    }
    if (request_ == session) {
        request_.reset();
    }
}

bool SimulatedKeyboardTap::hasGivenUp(TapSession session) const {
    const std::scoped_lock lock(lock_);
    return givenUp_.contains(session);
}

SwitcherModifier SimulatedKeyboardTap::trigger() const {
    const std::scoped_lock lock(lock_);
    return trigger_;
}

bool SimulatedKeyboardTap::isSessionOpen() const {
    const std::scoped_lock lock(lock_);
    return session_.has_value();
}

std::optional<TapVerdict> SimulatedKeyboardTap::deliver(const TapEvent& event) {
    if (!isEnabled()) {
        return std::nullopt;
    }
    // Without the lock, because the callback may call the tap.
    const auto verdict = callback_(event);
    const std::scoped_lock lock(lock_);
    if (verdict.requestedSession) {
        request_ = verdict.requestedSession;
    }
    return verdict;
}

void SimulatedKeyboardTap::disableBySystem(TapEvent::Type reason) {
    setEnabled(false);
    static_cast<void>(callback_(SimulatedTapEvent(reason, {})));
}

void SimulatedKeyboardTap::giveUpRequest() {
    const std::scoped_lock lock(lock_);
    if (const auto request = std::exchange(request_, std::nullopt)) {
        givenUp_.insert(*request);
    }
}

KeyboardTaps::Start SimulatedKeyboardTaps::start(SwitcherModifier trigger, TapCallback callback) {
    if (!refusal_.empty()) {
        return {nullptr, refusal_};
    }
    ++startCount_;
    auto tap = std::make_unique<SimulatedKeyboardTap>(*this, trigger, std::move(callback));
    installed_ = tap.get();
    return {std::move(tap), {}};
}

bool SimulatedKeyboardTaps::press(TapEvent::Type type, const SimulatedKey& key) {
    const auto verdict =
        installed_ != nullptr ? installed_->deliver(SimulatedTapEvent(type, key)) : std::optional<TapVerdict>();
    if (!verdict) {
        return true;
    }
    lastVerdict_ = *verdict;
    return !verdict->isSwallowed;
}

void SimulatedKeyboardTaps::noteRemoved(const SimulatedKeyboardTap& tap) {
    if (installed_ == &tap) {
        installed_ = nullptr;
    }
}

}  // namespace ferrowyn
