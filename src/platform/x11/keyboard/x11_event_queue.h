#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <set>
#include <utility>

#include "platform/x11/keyboard/x11_keyboard_event.h"
#include "platform/x11/keyboard/x11_keyboard_grabs.h"
#include "platform/x11/keyboard/x11_keyboard_reader.h"
#include "platform/x11/keyboard/x11_tap_keyboard.h"

namespace ferrowyn {

class X11KeyboardLayout;
struct X11InputContext;

/// Tracks the keys that are down while the keyboard is grabbed; Shift is the only modifier among them. The press of the
/// trigger's key does not reach the master, so the server does not repeat it: this class does, until the key's raw
/// release. A key that went down before the session (in a game, for example) goes on repeating; its repeats are dropped
/// until it is released. Tap thread.
class X11HeldKeys {
public:
    using Clock = std::chrono::steady_clock;

    /// Notes an event of a key that is not a modifier, when it arrives. `isAtSlave`: a grab on a slave delivered it.
    void note(const X11KeyboardEvent& event, bool isAtSlave);
    /// The trigger's key is down. It repeats with the server's delay and rate.
    void holdTrigger(const X11KeyboardEvent& press, const X11ActiveGrab::State& state);

    /// Notes the keys that were down when the keyboard was grabbed.
    void noteGrab(const X11ActiveGrab::KeysDown& keysDown, const X11KeyboardLayout& layout);

    /// A session begins. `trigger` is the key whose press began it; nullopt when none did.
    void beginSession(std::optional<std::uint32_t> trigger);
    /// Whether the event, which is about to be delivered, belongs to the session. A repeat does when its press did.
    [[nodiscard]] bool belongsToSession(const X11KeyboardEvent& event);

    /// Notes an event of a Shift key when it is delivered, in the order of the queue.
    void noteShift(const X11KeyboardEvent& event);
    /// Whether a Shift key is down, also when the modifiers do not show it.
    [[nodiscard]] bool isShiftDown() const { return !shiftKeyCodes_.empty(); }

    /// When the trigger's key repeats next; nullopt while it is not down.
    [[nodiscard]] std::optional<Clock::time_point> nextRepeat() const;
    /// The repeat, if it is due.
    [[nodiscard]] std::optional<X11KeyboardEvent> takeRepeat();
    /// Releases all keys that were pressed while the keyboard was grabbed, so that none repeats in the window that gets
    /// the focus next. Called before the keyboard is ungrabbed.
    void releaseAll(X11ActiveGrab& activeGrab);
    /// Releases the keys that were down before the grab, which ends their repeats. Called after the keyboard was
    /// ungrabbed, because the application that got the press must get the release.
    void releaseEarlierKeys(X11ActiveGrab& activeGrab);

private:
    struct Trigger {
        X11KeyboardEvent press;
        Clock::time_point repeatAt;
        std::chrono::milliseconds interval{0};
    };

    /// The keys whose press came from the master and whose release did not come yet.
    std::set<std::uint32_t> keyCodes_;
    /// The keys that were down before the grab.
    std::set<std::uint32_t> earlierKeyCodes_;
    std::set<std::uint32_t> shiftKeyCodes_;
    /// The keys whose press was delivered in this session and whose release was not yet.
    std::set<std::uint32_t> sessionKeyCodes_;
    std::optional<Trigger> trigger_;
};

/// The event queue of the tap: receives key events, adds those that the master keyboard missed, and keeps them in order
/// until they are delivered. Tap thread.
class X11EventQueue {
public:
    /// The references outlive this.
    X11EventQueue(X11KeyboardReader reader, X11TapKeyboard& keyboard, X11ActiveGrab& activeGrab, X11HeldKeys& heldKeys,
                  X11InputContext& context)
        : reader_(reader), keyboard_(keyboard), activeGrab_(activeGrab), heldKeys_(heldKeys), context_(context) {}

    /// Receives the events that have arrived; true when there were any. `dropsRepeats` is set while nothing is
    /// delivered: queued repeats would be delivered long after the key went up.
    bool receive(bool dropsRepeats);

    [[nodiscard]] bool isEmpty() const { return queue_.empty(); }
    [[nodiscard]] const X11KeyboardEvent& front() const { return queue_.front(); }
    [[nodiscard]] X11KeyboardEvent take();
    void clear() { queue_.clear(); }

    /// Whether a release of this key is queued.
    [[nodiscard]] bool hasReleaseOf(std::uint32_t keyCode) const;
    /// Undoes the queued events in `keysDown`: changes the keys that are down now to those that were down before the
    /// first queued event.
    void rewind(X11ActiveGrab::KeysDown& keysDown) const;
    /// Whether a later event of the same key is queued behind this repeat.
    [[nodiscard]] bool isStaleRepeat(const X11KeyboardEvent& event) const;

    [[nodiscard]] bool hasChanges() const { return changes_.layout || changes_.devices; }
    /// Whether a screen locker has started since the last call. Known only while windows are watched.
    [[nodiscard]] bool takeLocker() { return std::exchange(changes_.locker, false); }
    void watchWindows(bool isWatching) const { reader_.lockers().watchWindows(isWatching); }
    [[nodiscard]] X11KeyboardReader::Changes takeChanges() { return std::exchange(changes_, {}); }

private:
    void receive(const X11KeyboardEvent& received, bool dropsRepeats);
    void receiveAtSlave(const X11KeyboardEvent& event);
    [[nodiscard]] bool wasHeldBack(const X11KeyboardEvent& event) const;
    void receiveMissedModifier(const X11KeyboardEvent& release);
    void noteUser(const X11KeyboardEvent& event);

    X11KeyboardReader reader_;
    X11TapKeyboard& keyboard_;
    X11ActiveGrab& activeGrab_;
    X11HeldKeys& heldKeys_;
    X11InputContext& context_;
    X11KeyboardReader::Changes changes_;
    std::deque<X11KeyboardEvent> queue_;
};

}  // namespace ferrowyn
