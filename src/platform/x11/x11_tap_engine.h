#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "core/switcher_modifier.h"
#include "platform/event_tap.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_key_text.h"
#include "platform/x11/x11_keyboard_event.h"
#include "platform/x11/x11_keyboard_grabs.h"
#include "platform/x11/x11_keyboard_layout.h"
#include "platform/x11/x11_keyboard_reader.h"
#include "platform/x11/x11_keyboard_seizure.h"
#include "platform/x11/x11_tap_mailbox.h"

namespace ferrowyn {

class Log;
struct X11InputContext;

/// What a tap does on its thread: waits for the trigger, takes the keyboard, asks for a session, delivers the session's
/// keys, gives the keyboard back. Owned by `X11EventTap`; tap thread.
class X11TapEngine {
public:
    using Clock = std::chrono::steady_clock;

    /// How long the main thread may take to open the session that it was asked for, before the user gets the keyboard
    /// back.
    static constexpr std::chrono::milliseconds answerTimeout{1000};
    /// After the trigger's modifier went up the session is probably ending: for this long a new press of the trigger
    /// waits for that, so that it opens the next session instead of moving the selection of a dying one.
    static constexpr std::chrono::milliseconds endingGrace{250};
    /// A session that was opened without the trigger, from a menu, has to wait until the menu lets the keyboard go.
    static constexpr std::chrono::milliseconds seizureRetryInterval{20};
    static constexpr std::chrono::milliseconds seizureRetryTimeout{1000};

    /// Null when the server lacks what is needed. Waits for the server.
    [[nodiscard]] static std::unique_ptr<X11TapEngine> create(std::unique_ptr<X11Connection> connection,
                                                              SwitcherModifier trigger, EventTaps::Callback callback,
                                                              X11InputContext& context, Log& log);
    /// Gives back whatever of the keyboard is held, and waits until the server has done it.
    ~X11TapEngine();
    X11TapEngine(const X11TapEngine&) = delete;
    X11TapEngine& operator=(const X11TapEngine&) = delete;

    [[nodiscard]] const X11Connection& connection() const { return *connection_; }
    void handle(const X11TapRequest& request);
    /// Handles all that has arrived and all that is due. False when the connection is lost.
    [[nodiscard]] bool serve();
    /// When `serve` must be called even if nothing arrives.
    [[nodiscard]] std::optional<Clock::time_point> deadline() const;

private:
    enum class Phase { hidden, awaitingAnswer, open };

    X11TapEngine(std::unique_ptr<X11Connection> connection, X11KeyboardReader reader, SwitcherModifier trigger,
                 EventTaps::Callback callback, X11InputContext& context, Log& log);

    /// Takes in what has arrived; whether anything had.
    bool receive();
    void receive(const X11KeyboardEvent& event);
    void deliverQueue();
    void deliverHidden(const X11KeyboardEvent& event);
    void deliverInSession(const X11KeyboardEvent& event);
    void beginSession(const X11KeyboardEvent& press);
    void reportActiveWindow(xcb_window_t window) const;
    void refuseSession(const X11KeyboardEvent& press);
    void openSession();
    void endSession();
    void giveKeyboardBack();
    void seizeForOpenSession();
    void handleDeadlines();
    void repeatTrigger();
    void receiveMissedModifier(const X11KeyboardEvent& release);
    void noteHeldKeys(const X11KeyboardEvent& event);
    void holdTrigger(const X11KeyboardEvent& press, const X11KeyboardSeizure::State& state);

    TapVerdict deliverKey(const X11KeyboardEvent& event);
    void deliverFlags(std::uint32_t modifiers);
    [[nodiscard]] std::uint64_t reportedFlags(std::uint32_t modifiers) const;

    [[nodiscard]] bool isTrigger(const X11KeyboardEvent& event) const;
    [[nodiscard]] bool isStaleRepeat(const X11KeyboardEvent& event) const;
    [[nodiscard]] bool mustWaitForTheEnd(const X11KeyboardEvent& event) const;
    void applyChanges();
    void refreshLayout();
    void refreshGrabs();
    void noteUser(const X11KeyboardEvent& event);
    void probeKeyboard();

    std::unique_ptr<X11Connection> connection_;
    X11KeyboardReader reader_;
    SwitcherModifier trigger_;
    EventTaps::Callback callback_;
    X11InputContext& context_;
    Log& log_;

    std::unique_ptr<xkb_context, XkbUnref> xkbContext_;
    std::unique_ptr<X11KeyboardLayout> layout_;
    X11KeyText text_;
    X11KeyboardGrabs grabs_;
    X11KeyboardSeizure seizure_;

    bool isEnabled_ = false;
    Phase phase_ = Phase::hidden;
    X11KeyboardReader::Changes changes_;
    /// Received and not yet delivered.
    std::deque<X11KeyboardEvent> queue_;
    std::vector<std::uint32_t> triggerKeyCodes_;
    /// The keys, modifiers aside, whose press came through the master and whose release did not yet.
    std::set<std::uint32_t> heldKeys_;
    /// The trigger's key while it is held. Its press never reached the master, so the server does not repeat it there:
    /// that is done here, until the hardware says that the key went up.
    struct HeldTrigger {
        X11KeyboardEvent press;
        Clock::time_point repeatAt;
        std::chrono::milliseconds interval{0};
    };
    std::optional<HeldTrigger> heldTrigger_;
    /// The real modifiers as last heard of.
    std::uint32_t modifiers_ = 0;
    /// As last told to the callback.
    std::uint64_t flags_ = 0;
    bool isLateCloseExpected_ = false;
    std::optional<Clock::time_point> answerDeadline_;
    std::optional<Clock::time_point> endingUntil_;
    std::optional<Clock::time_point> seizureRetry_;
    std::optional<Clock::time_point> seizureRetryEnd_;
};

}  // namespace ferrowyn
