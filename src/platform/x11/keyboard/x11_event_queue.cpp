#include "platform/x11/keyboard/x11_event_queue.h"

#include <algorithm>

#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/keyboard/x11_keyboard_layout.h"

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

void X11HeldKeys::noteGrab(const X11ActiveGrab::KeysDown& keysDown, const X11KeyboardLayout& layout) {
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

void X11HeldKeys::holdTrigger(const X11KeyboardEvent& press, const X11ActiveGrab::State& state) {
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

void X11HeldKeys::releaseAll(X11ActiveGrab& activeGrab) {
    // A key that is still down would go on repeating into the window that comes to the front, or reach the manager's
    // own binding while the modifier is held. A key that the user's fingers hold stays down for the server, whose test
    // keyboard cannot let it go; but such a release ends its repeating all the same. Whoever gets the keyboard never
    // saw the press and misses no release.
    for (const auto keyCode : keyCodes_) {
        activeGrab.releaseForMaster(keyCode);
    }
    keyCodes_.clear();
    trigger_.reset();
}

void X11HeldKeys::releaseEarlierKeys(X11ActiveGrab& activeGrab) {
    for (const auto keyCode : std::exchange(earlierKeyCodes_, {})) {
        activeGrab.releaseForMaster(keyCode);
    }
}

using Kind = X11KeyboardEvent::Kind;

bool X11EventQueue::receive(bool dropsRepeats) {
    const bool hasRead =
        reader_.readAvailable(changes_, [&](const X11KeyboardEvent& event) { receive(event, dropsRepeats); });
    activeGrab_.noteAllRead();
    // Also without a session: a trigger that came while the tap was disabled is freed alone, and what the server held
    // back behind it is read only now.
    if (!activeGrab_.hasGrabbedSlave()) {
        activeGrab_.repeatMissedReleases();
    }
    return hasRead;
}

void X11EventQueue::receive(const X11KeyboardEvent& received, bool dropsRepeats) {
    auto event = received;
    event.wasHeldBack = wasHeldBack(event);
    if (event.kind != Kind::modifiersChanged && !keyboard_.layout().isModifierKey(event.keyCode)) {
        heldKeys_.note(event, keyboard_.isAtSlave(event));
    }
    if (event.kind == Kind::rawRelease) {
        return;
    }
    if (keyboard_.isAtSlave(event)) {
        receiveAtSlave(event);
    }
    noteUser(event);
    if (!(dropsRepeats && event.isRepeat)) {
        queue_.push_back(event);
    }
}

void X11EventQueue::receiveAtSlave(const X11KeyboardEvent& event) {
    if (event.kind == Kind::release) {
        activeGrab_.noteMissedRelease(event.deviceId, event.keyCode);
        receiveMissedModifier(event);
    } else if (event.kind == Kind::press && !event.wasHeldBack) {
        activeGrab_.noteGrabbedSlave(event.deviceId, keyboard_.grabs().heldKeysBackAt(event.sequence));
        if (activeGrab_.isHeld()) {
            // A trigger at another keyboard, or one that came before the passive grabs were gone.
            activeGrab_.freeSlave(event.deviceId);
        }
    }
}

bool X11EventQueue::wasHeldBack(const X11KeyboardEvent& event) const {
    return keyboard_.isAtSlave(event) && activeGrab_.hasFreed(event.deviceId);
}

void X11EventQueue::receiveMissedModifier(const X11KeyboardEvent& release) {
    // The release is not repeated when the user has pressed the key again by then, and for the master the modifier was
    // never up; but it was, and a session hangs on it.
    const auto modifiers = keyboard_.layout().modifiersOfKey(release.keyCode);
    if ((modifiers & keyboard_.triggerMask()) != 0) {
        auto change = release;
        change.kind = Kind::modifiersChanged;
        change.modifiers.effective &= ~modifiers;
        queue_.push_back(change);
    }
}

void X11EventQueue::noteUser(const X11KeyboardEvent& event) {
    context_.noteUserTime(event.time);
    if (event.kind != Kind::modifiersChanged && !keyboard_.isAtSlave(event)) {
        context_.setPointer(event.rootX, event.rootY);
    }
}

X11KeyboardEvent X11EventQueue::take() {
    const auto event = queue_.front();
    queue_.pop_front();
    return event;
}

bool X11EventQueue::hasReleaseOf(std::uint32_t keyCode) const {
    return std::any_of(queue_.begin(), queue_.end(), [keyCode](const X11KeyboardEvent& later) {
        return later.kind == Kind::release && later.keyCode == keyCode;
    });
}

void X11EventQueue::rewind(X11ActiveGrab::KeysDown& keysDown) const {
    for (auto event = queue_.rbegin(); event != queue_.rend(); ++event) {
        if (event->kind != Kind::modifiersChanged && !event->isRepeat && event->keyCode < keysDown.size()) {
            keysDown[event->keyCode] = event->kind == Kind::release;
        }
    }
}

bool X11EventQueue::isStaleRepeat(const X11KeyboardEvent& event) const {
    return event.isRepeat && std::any_of(queue_.begin(), queue_.end(), [&event](const X11KeyboardEvent& later) {
               return later.kind != Kind::modifiersChanged && later.keyCode == event.keyCode;
           });
}

}  // namespace ferrowyn
