#include "platform/x11/x11_tap_reception.h"

#include <algorithm>

#include "platform/x11/x11_input_context.h"

namespace ferrowyn {

using Kind = X11KeyboardEvent::Kind;

bool X11TapReception::receive(bool dropsRepeats) {
    const bool hasRead =
        reader_.readAvailable(changes_, [&](const X11KeyboardEvent& event) { receive(event, dropsRepeats); });
    seizure_.noteAllRead();
    if (seizure_.isHeld()) {
        seizure_.repeatMissedReleases();
    }
    return hasRead;
}

void X11TapReception::receive(const X11KeyboardEvent& received, bool dropsRepeats) {
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

void X11TapReception::receiveAtSlave(const X11KeyboardEvent& event) {
    if (event.kind == Kind::release) {
        seizure_.noteMissedRelease(event.deviceId, event.keyCode);
        receiveMissedModifier(event);
    } else if (event.kind == Kind::press && !event.wasHeldBack) {
        seizure_.noteGrabbedSlave(event.deviceId, keyboard_.grabs().heldKeysBackAt(event.sequence));
        if (seizure_.isHeld()) {
            // A trigger at another keyboard, or one that came before the passive grabs were gone.
            seizure_.freeSlave(event.deviceId);
        }
    }
}

bool X11TapReception::wasHeldBack(const X11KeyboardEvent& event) const {
    return keyboard_.isAtSlave(event) && seizure_.hasFreed(event.deviceId);
}

void X11TapReception::receiveMissedModifier(const X11KeyboardEvent& release) {
    // The server ignores the repeated release when the user has pressed the key again by then, and for the master the
    // modifier was never up; but it was, and a session hangs on it.
    const auto modifiers = keyboard_.layout().modifiersOfKey(release.keyCode);
    if ((modifiers & keyboard_.triggerMask()) != 0) {
        auto change = release;
        change.kind = Kind::modifiersChanged;
        change.modifiers.effective &= ~modifiers;
        queue_.push_back(change);
    }
}

void X11TapReception::noteUser(const X11KeyboardEvent& event) {
    context_.noteUserTime(event.time);
    if (event.kind != Kind::modifiersChanged && !keyboard_.isAtSlave(event)) {
        context_.setPointer(event.rootX, event.rootY);
    }
}

X11KeyboardEvent X11TapReception::take() {
    const auto event = queue_.front();
    queue_.pop_front();
    return event;
}

bool X11TapReception::hasReleaseOf(std::uint32_t keyCode) const {
    return std::any_of(queue_.begin(), queue_.end(), [keyCode](const X11KeyboardEvent& later) {
        return later.kind == Kind::release && later.keyCode == keyCode;
    });
}

void X11TapReception::rewind(X11KeyboardSeizure::KeysDown& keysDown) const {
    for (auto event = queue_.rbegin(); event != queue_.rend(); ++event) {
        if (event->kind != Kind::modifiersChanged && !event->isRepeat && event->keyCode < keysDown.size()) {
            keysDown[event->keyCode] = event->kind == Kind::release;
        }
    }
}

bool X11TapReception::isStaleRepeat(const X11KeyboardEvent& event) const {
    return event.isRepeat && std::any_of(queue_.begin(), queue_.end(), [&event](const X11KeyboardEvent& later) {
               return later.kind != Kind::modifiersChanged && later.keyCode == event.keyCode;
           });
}

}  // namespace ferrowyn
