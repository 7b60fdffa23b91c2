#pragma once

#include <deque>
#include <utility>

#include "platform/x11/x11_held_keys.h"
#include "platform/x11/x11_keyboard_event.h"
#include "platform/x11/x11_keyboard_reader.h"
#include "platform/x11/x11_keyboard_seizure.h"
#include "platform/x11/x11_tap_keyboard.h"

namespace ferrowyn {

struct X11InputContext;

/// Takes in what the server sends, makes up for what the master keyboard missed, and keeps the events in order until
/// they are delivered. Tap thread.
class X11TapReception {
public:
    /// The references outlive this.
    X11TapReception(X11KeyboardReader reader, X11TapKeyboard& keyboard, X11KeyboardSeizure& seizure,
                    X11HeldKeys& heldKeys, X11InputContext& context)
        : reader_(reader), keyboard_(keyboard), seizure_(seizure), heldKeys_(heldKeys), context_(context) {}

    /// Takes in what has arrived; whether anything had. While nothing is delivered, repeats are dropped: a backlog of
    /// them would run on long after the key went up.
    bool receive(bool dropsRepeats);

    [[nodiscard]] bool isEmpty() const { return queue_.empty(); }
    [[nodiscard]] const X11KeyboardEvent& front() const { return queue_.front(); }
    [[nodiscard]] X11KeyboardEvent take();
    void clear() { queue_.clear(); }

    /// Whether a release of this key waits.
    [[nodiscard]] bool hasReleaseOf(std::uint32_t keyCode) const;
    /// Undoes the queued events in `keysDown`: from the keys that are down now to those that were down before the
    /// first.
    void rewind(X11KeyboardSeizure::KeysDown& keysDown) const;
    /// Whether more of the same key waits behind this repeat.
    [[nodiscard]] bool isStaleRepeat(const X11KeyboardEvent& event) const;

    [[nodiscard]] bool hasChanges() const { return changes_.layout || changes_.devices; }
    /// While windows are looked at, whether a screen locker has started since this was last asked.
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
    X11KeyboardSeizure& seizure_;
    X11HeldKeys& heldKeys_;
    X11InputContext& context_;
    X11KeyboardReader::Changes changes_;
    std::deque<X11KeyboardEvent> queue_;
};

}  // namespace ferrowyn
