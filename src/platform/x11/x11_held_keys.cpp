#include "platform/x11/x11_held_keys.h"

#include <utility>

#include "platform/x11/x11_keyboard_layout.h"

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
        earlierKeyCodes_.erase(event.keyCode);
    } else if (event.kind == Kind::press && !isAtSlave && !event.isRepeat) {
        keyCodes_.insert(event.keyCode);
        earlierKeyCodes_.erase(event.keyCode);
    }
}

void X11HeldKeys::noteTaken(const X11KeyboardSeizure::KeysDown& keysDown, const X11KeyboardLayout& layout) {
    earlierKeyCodes_.clear();
    shiftKeyCodes_.clear();
    for (std::uint32_t keyCode = 0; keyCode < keysDown.size(); ++keyCode) {
        if (!keysDown[keyCode]) {
            continue;
        }
        if (!layout.isModifierKey(keyCode)) {
            earlierKeyCodes_.insert(keyCode);
        } else if (layout.isShiftKey(keyCode)) {
            shiftKeyCodes_.insert(keyCode);
        }
    }
}

void X11HeldKeys::beginSession(std::optional<std::uint32_t> trigger) {
    sessionKeyCodes_.clear();
    if (trigger) {
        sessionKeyCodes_.insert(*trigger);
    }
}

bool X11HeldKeys::belongsToSession(const X11KeyboardEvent& event) {
    if (event.kind == Kind::release) {
        sessionKeyCodes_.erase(event.keyCode);
    } else if (event.isRepeat) {
        return sessionKeyCodes_.contains(event.keyCode);
    } else {
        sessionKeyCodes_.insert(event.keyCode);
    }
    return true;
}

void X11HeldKeys::holdTrigger(const X11KeyboardEvent& press, const X11KeyboardSeizure::State& state) {
    if (state.repeatInterval.count() > 0) {
        trigger_ = Trigger{press, Clock::now() + state.repeatDelay, state.repeatInterval};
    }
}

void X11HeldKeys::noteShift(const X11KeyboardEvent& event) {
    if (event.kind == Kind::press) {
        shiftKeyCodes_.insert(event.keyCode);
    } else {
        shiftKeyCodes_.erase(event.keyCode);
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

void X11HeldKeys::releaseEarlierKeys(X11KeyboardSeizure& seizure) {
    for (const auto keyCode : std::exchange(earlierKeyCodes_, {})) {
        seizure.releaseForMaster(keyCode);
    }
}

}  // namespace ferrowyn
