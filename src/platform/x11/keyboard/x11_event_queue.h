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

/// The keys that are down while the keyboard is held; of the modifiers only Shift. The press of the trigger's key never
/// reached the master, so the server does not repeat it there: that is done here, until the hardware says that it went
/// up. A key that went down before the session, as in a game, goes on repeating; that is for nobody until it is
/// released. Tap thread.
class X11HeldKeys {
public:
    using Clock = std::chrono::steady_clock;

    /// An event of a key that is no modifier, when it arrives. `isAtSlave`: a slave's own grab delivered it.
    void note(const X11KeyboardEvent& event, bool isAtSlave);
    /// The trigger's key is down, and repeats as the server's other keys do.
    void holdTrigger(const X11KeyboardEvent& press, const X11KeyboardSeizure::State& state);

    /// These were down when the keyboard was taken.
    void noteTaken(const X11KeyboardSeizure::KeysDown& keysDown, const X11KeyboardLayout& layout);

    /// A session begins, by the press of this key if by any.
    void beginSession(std::optional<std::uint32_t> trigger);
    /// Whether the event, which is about to be delivered, is one of the session's: a repeat is, when its press was.
    [[nodiscard]] bool belongsToSession(const X11KeyboardEvent& event);

    /// An event of a key that is Shift, when its turn has come among those that are delivered.
    void noteShift(const X11KeyboardEvent& event);
    /// Whether such a key is down, whatever the modifiers are.
    [[nodiscard]] bool isShiftDown() const { return !shiftKeyCodes_.empty(); }

    /// When the trigger's key repeats next; nothing while it is not held.
    [[nodiscard]] std::optional<Clock::time_point> nextRepeat() const;
    /// The repeat, when it is due.
    [[nodiscard]] std::optional<X11KeyboardEvent> takeRepeat();
    /// Lets every key go that was pressed while the keyboard was held, so that none repeats for whoever has the
    /// keyboard next. Before the keyboard is given back.
    void releaseAll(X11KeyboardSeizure& seizure);
    /// The same for those that were down before: they stop repeating. After the keyboard was given back, because the
    /// application that saw the press must see the release.
    void releaseEarlierKeys(X11KeyboardSeizure& seizure);

private:
    struct Trigger {
        X11KeyboardEvent press;
        Clock::time_point repeatAt;
        std::chrono::milliseconds interval{0};
    };

    /// Whose press came through the master and whose release did not yet.
    std::set<std::uint32_t> keyCodes_;
    /// Down since before the keyboard was taken.
    std::set<std::uint32_t> earlierKeyCodes_;
    std::set<std::uint32_t> shiftKeyCodes_;
    /// Whose press was delivered in this session and whose release was not yet.
    std::set<std::uint32_t> sessionKeyCodes_;
    std::optional<Trigger> trigger_;
};

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
