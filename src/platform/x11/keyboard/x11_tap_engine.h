#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "core/switcher_options.h"
#include "platform/event_tap.h"
#include "platform/x11/keyboard/x11_event_queue.h"
#include "platform/x11/keyboard/x11_input_method.h"
#include "platform/x11/keyboard/x11_keyboard_event.h"
#include "platform/x11/keyboard/x11_keyboard_grabs.h"
#include "platform/x11/keyboard/x11_keyboard_guard.h"
#include "platform/x11/keyboard/x11_keyboard_reader.h"
#include "platform/x11/keyboard/x11_tap_delivery.h"
#include "platform/x11/keyboard/x11_tap_keyboard.h"
#include "platform/x11/keyboard/x11_tap_mailbox.h"
#include "platform/x11/x11_connection.h"

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
    /// How long the main thread may leave a key of an open session unanswered before the user gets the keyboard back.
    static constexpr std::chrono::milliseconds sessionTimeout{3000};
    /// Who answers the trigger instead of this program and lets the keyboard go with the modifier, as a manager's own
    /// switcher does, has let it go by then.
    static constexpr std::chrono::milliseconds lostTriggerGrace{300};
    /// A session that was opened without the trigger, from a menu, has to wait until the menu lets the keyboard go.
    static constexpr std::chrono::milliseconds seizureRetryInterval{20};
    static constexpr std::chrono::milliseconds seizureRetryTimeout{1000};

    /// Null when the server lacks what is needed. Without a guard no keys are held back. Waits for the server.
    [[nodiscard]] static std::unique_ptr<X11TapEngine> create(std::unique_ptr<X11Connection> connection,
                                                              std::unique_ptr<X11KeyboardGuard> guard,
                                                              SwitcherModifier trigger, EventTaps::Callback callback,
                                                              X11InputContext& context, Log& log);
    /// Gives back whatever of the keyboard is held, and waits until the server has done it.
    ~X11TapEngine();
    X11TapEngine(const X11TapEngine&) = delete;
    X11TapEngine& operator=(const X11TapEngine&) = delete;

    [[nodiscard]] const X11Connection& connection() const { return *connection_; }
    /// Null where none is asked.
    [[nodiscard]] const X11InputMethod* inputMethod() const { return inputMethod_.get(); }
    /// What the guard's questions come by; -1 without one.
    [[nodiscard]] int guardDescriptor() const { return guard_ != nullptr ? guard_->fileDescriptor() : -1; }
    void handle(const X11TapRequest& request);
    /// The guard ended the connection of this tap's predecessor: whatever that had begun is over.
    void reportLoss();
    /// This tap's connection has ended, and it has no successor yet.
    void reportEnd();
    /// Handles all that has arrived and all that is due. False when the connection is lost.
    [[nodiscard]] bool serve();
    /// Told that the tap disables itself, before the tap's callback is. Set before the tap's thread starts.
    std::function<void()> onLoss = [] {};
    /// When `serve` must be called even if nothing arrives.
    [[nodiscard]] std::optional<Clock::time_point> deadline() const;

private:
    enum class Phase { hidden, awaitingAnswer, open };

    X11TapEngine(std::unique_ptr<X11Connection> connection, std::unique_ptr<X11KeyboardGuard> guard,
                 std::unique_ptr<X11TapKeyboard> keyboard, X11KeyboardReader reader, EventTaps::Callback callback,
                 X11InputContext& context, Log& log);

    void answerGuard();
    /// The guard hears of it before the server does when the keyboard is taken, and after it when it is given back.
    void tellGuard(bool isHeld);
    /// Takes in what has arrived; whether anything had.
    bool receive();
    void deliverQueue();
    /// The key itself says whether Shift is down: where it switches layouts together with Alt it sets no modifier.
    void addShift(X11KeyboardEvent& event);
    void deliverHidden(const X11KeyboardEvent& event);
    void deliverInSession(const X11KeyboardEvent& event);
    /// Whether the input method is asked first what the press is. While it composes that holds for any key; but not for
    /// those that are pressed together with a modifier, which are the switcher's.
    [[nodiscard]] bool askInputMethod(const X11KeyboardEvent& event);
    void hearInputMethod();
    void deliverKey(const X11KeyboardEvent& event);
    void handleDeadlines();
    /// A screen locker must get the keyboard, or it gives up.
    void yieldToLocker();
    void repeatTrigger();
    void applyGrabs();

    void beginSession(const X11KeyboardEvent& press);
    /// Takes the keyboard at the trigger's press, to which it adds what its own keyboard did not know; false when
    /// another client holds the keyboard.
    [[nodiscard]] bool seizeAt(X11KeyboardEvent& press);
    void refuseSession(const X11KeyboardEvent& press);
    /// The modifiers are these now, and a trigger went to another client before.
    void followLostTrigger(std::uint32_t modifiers);
    void judgeLostTrigger();
    void awaitAnswer();
    void openSession(TapSession session);
    void seizeForOpenSession();
    void endSession();
    void giveKeyboardBack();
    void loseKeyboard();
    [[nodiscard]] std::optional<Clock::time_point> sessionDeadline() const;
    void reportActiveWindow(xcb_window_t window) const;
    /// Tells the callback that the modifiers are these now.
    void deliverModifiers(std::uint32_t modifiers);
    /// A trigger that is pressed while the session may be ending belongs to the next one if it does.
    [[nodiscard]] bool mustWaitForTheEnd(const X11KeyboardEvent& event) const;
    void probeKeyboard();
    /// Takes it for a moment.
    [[nodiscard]] bool isKeyboardFree();

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11KeyboardGuard> guard_;
    std::unique_ptr<X11TapKeyboard> keyboard_;
    X11InputContext& context_;
    Log& log_;
    X11KeyboardSeizure seizure_;
    X11HeldKeys heldKeys_;
    X11TapReception reception_;
    X11TapDelivery delivery_;
    std::unique_ptr<X11InputMethod> inputMethod_;
    /// The press that the input method was asked about. What comes after it waits.
    std::optional<X11KeyboardEvent> asked_;

    bool isEnabled_ = false;
    Phase phase_ = Phase::hidden;
    /// The real modifiers as last heard of.
    std::uint32_t modifiers_ = 0;
    /// The session that was asked for or is open; none while the phase is hidden.
    std::optional<TapSession> session_;
    /// The trigger's modifier went up, and the main thread has not yet said whether that ends the session.
    bool mayBeEnding_ = false;
    /// A trigger went to another client, and its modifier is still down.
    bool hasLostTrigger_ = false;
    std::optional<Clock::time_point> lostTriggerJudgement_;
    std::optional<Clock::time_point> answerDeadline_;
    std::optional<Clock::time_point> seizureRetry_;
    std::optional<Clock::time_point> seizureRetryEnd_;
};

}  // namespace ferrowyn
