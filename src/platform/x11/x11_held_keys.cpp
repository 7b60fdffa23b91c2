#include "platform/x11/x11_held_keys.h"

namespace ferrowyn {

using Kind = X11KeyboardEvent::Kind;

void X11HeldKeys::note(const X11KeyboardEvent& event, bool isAtSlave) {
    // Another key takes the repeating over, as on any keyboard.
    const bool endsTrigger =
        event.kind == Kind::press ? !isAtSlave : trigger_ && trigger_->press.keyCode == event.keyCode;
    if (endsTrigger) {
        trigger_.reset();
    }
    if (event.kind == Kind::release) {
        keyCodes_.erase(event.keyCode);
    } else if (event.kind == Kind::press && !isAtSlave) {
        keyCodes_.insert(event.keyCode);
    }
}

void X11HeldKeys::holdTrigger(const X11KeyboardEvent& press, const X11KeyboardSeizure::State& state) {
    if (state.repeatInterval.count() > 0) {
        trigger_ = Trigger{press, Clock::now() + state.repeatDelay, state.repeatInterval};
    }
}

std::optional<X11HeldKeys::Clock::time_point> X11HeldKeys::nextRepeat() const {
    return trigger_ ? std::optional(trigger_->repeatAt) : std::nullopt;
}

std::optional<X11KeyboardEvent> X11HeldKeys::takeRepeat() {
    const auto now = Clock::now();
    if (!trigger_ || now < trigger_->repeatAt) {
        return std::nullopt;
    }
    // From now, not from when it was due: repeats that were missed are not made up for.
    trigger_->repeatAt = now + trigger_->interval;
    auto repeat = trigger_->press;
    repeat.isRepeat = true;
    return repeat;
}

void X11HeldKeys::releaseAll(X11KeyboardSeizure& seizure) {
    // A key that is still down would go on repeating into the window that comes to the front, or reach the manager's
    // own binding while the modifier is held. A key that the user's fingers hold stays down for the server, whose test
    // keyboard cannot let it go; but such a release ends its repeating all the same. Whoever gets the keyboard never
    // saw the press and misses no release.
    for (const auto keyCode : keyCodes_) {
        seizure.releaseForMaster(keyCode);
    }
    keyCodes_.clear();
    trigger_.reset();
}

}  // namespace ferrowyn
