#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/switcher_options.h"
#include "platform/keyboard_tap.h"
#include "platform/x11/keyboard/x11_event_queue.h"
#include "platform/x11/keyboard/x11_input_method.h"
#include "platform/x11/keyboard/x11_keyboard_event.h"
#include "platform/x11/keyboard/x11_keyboard_grabs.h"
#include "platform/x11/keyboard/x11_keyboard_guard.h"
#include "platform/x11/keyboard/x11_keyboard_reader.h"
#include "platform/x11/keyboard/x11_tap_delivery.h"
#include "platform/x11/keyboard/x11_tap_keyboard.h"
#include "platform/x11/x11_connection.h"

namespace ferrowyn {

class Log;
struct X11InputContext;

/// The part of a tap that runs on its thread: it waits for the trigger, grabs the keyboard, asks for a session,
/// delivers the session's keys and ungrabs the keyboard. Owned by `X11KeyboardTap`; tap thread.
class X11TapEngine {
public:
    using Clock = std::chrono::steady_clock;

    /// How long the main thread may take to open the requested session before the tap ungrabs the keyboard.
    static constexpr std::chrono::milliseconds answerTimeout{1000};
    /// How long the main thread may leave a key of an open session unhandled before the tap ungrabs the keyboard.
    static constexpr std::chrono::milliseconds sessionTimeout{3000};
    /// Another program that answered the trigger, and that ungrabs the keyboard when the modifier goes up (as the
    /// switcher of a window manager does), has done so within this time.
    static constexpr std::chrono::milliseconds lostTriggerGrace{300};
    /// A session that was opened from a menu can grab the keyboard only after the menu has ungrabbed it.
    static constexpr std::chrono::milliseconds grabRetryInterval{20};
    static constexpr std::chrono::milliseconds grabRetryTimeout{1000};

    /// Exactly one of the two is set.
    struct Creation {
        std::unique_ptr<X11TapEngine> engine;
        /// Why there is no engine, in words for the log.
        std::string refusal;
    };

    /// A disabled engine. Without a guard, no grab freezes the keyboard. Waits for the server.
    [[nodiscard]] static Creation create(std::unique_ptr<X11Connection> connection,
                                         std::unique_ptr<X11KeyboardGuard> guard, SwitcherModifier trigger,
                                         TapCallback callback, X11InputContext& context, Log& log);
    /// Ungrabs the keyboard and waits until the server has done it.
    ~X11TapEngine();
    X11TapEngine(const X11TapEngine&) = delete;
    X11TapEngine& operator=(const X11TapEngine&) = delete;

    [[nodiscard]] const X11Connection& connection() const { return *connection_; }
    /// Null when no input method is used.
    [[nodiscard]] const X11InputMethod* inputMethod() const { return inputMethod_.get(); }
    /// The guard's socket; -1 without a guard.
    [[nodiscard]] int guardDescriptor() const { return guard_ != nullptr ? guard_->fileDescriptor() : -1; }

    void setEnabled(bool isEnabled);
    void setTrigger(SwitcherModifier trigger);
    void openSession(TapSession session);
    void closeSession(TapSession session);
    /// Tries whether another client still has an active keyboard grab.
    void probeKeyboard();
    /// Another client needs the keyboard, or the main thread does not take its keys: ungrabs it, disables the tap and
    /// reports that. The tap's owner ends the session and enables the tap again.
    void loseKeyboard();
    /// The guard closed the connection of the engine before this one. Reports that its session has ended.
    void reportLoss();
    /// This engine's connection is lost, and there is no new engine yet.
    void reportEnd();
    /// A session has opened for a request that was given up. Reports the tap as disabled, so that the session ends; the
    /// tap goes on.
    void reportLateSession();
    /// Handles all events that have arrived and all deadlines that have passed. False when the connection is lost.
    [[nodiscard]] bool serve();
    /// Called when the tap disables itself, before the tap's callback. Set before the engine is used.
    std::function<void()> onLoss = [] {};
    /// Called with a request that `giveRequestUp` gives up. Set before the engine is used.
    std::function<void(TapSession)> onRequestGivenUp = [](TapSession) {};
    /// The session that was asked for, if it awaits its answer, can have no keys any more.
    void giveRequestUp() const;
    /// When `serve` must be called even without an event.
    [[nodiscard]] std::optional<Clock::time_point> deadline() const;

private:
    enum class Phase { hidden, awaitingAnswer, open };

    X11TapEngine(std::unique_ptr<X11Connection> connection, std::unique_ptr<X11KeyboardGuard> guard,
                 std::unique_ptr<X11TapKeyboard> keyboard, X11KeyboardReader reader, TapCallback callback,
                 X11InputContext& context, Log& log);

    void answerGuard();
    /// Tells the guard whether the keyboard is grabbed: before the grab request, and after the ungrab request.
    void tellGuard(bool isHeld);
    /// Reads the events that have arrived; true when there were any.
    bool receive();
    void deliverQueue();
    /// The key itself says whether Shift is down: where it switches layouts together with Alt it sets no modifier.
    void addShift(X11KeyboardEvent& event);
    void deliverHidden(const X11KeyboardEvent& event);
    void deliverInSession(const X11KeyboardEvent& event);
    /// Sends the press to the input method if it is for it; true when it was sent. Keys with a modifier are the
    /// switcher's and are not sent.
    [[nodiscard]] bool askInputMethod(const X11KeyboardEvent& event);
    void hearInputMethod();
    void deliverKey(const X11KeyboardEvent& event);
    void handleDeadlines();
    /// Ungrabs the keyboard for a screen locker, which gives up if it cannot grab it.
    void yieldToLocker();
    void repeatTrigger();
    void applyGrabs();

    void beginSession(const X11KeyboardEvent& press);
    /// Grabs the keyboard at the trigger's press and completes the press with the real modifier state. False when
    /// another client has grabbed the keyboard.
    [[nodiscard]] bool grabAt(X11KeyboardEvent& press);
    void refuseSession(const X11KeyboardEvent& press);
    /// The modifiers are these now, and a trigger went to another client before.
    void followLostTrigger(std::uint32_t modifiers);
    void judgeLostTrigger();
    void awaitAnswer();
    void grabForOpenSession();
    void endSession();
    void ungrabKeyboard();
    [[nodiscard]] std::optional<Clock::time_point> sessionDeadline() const;
    void reportActiveWindow(xcb_window_t window) const;
    /// Tells the callback that the modifiers are these now.
    void deliverModifiers(std::uint32_t modifiers);
    /// A trigger that is pressed while the session may be ending belongs to the next one if it does.
    [[nodiscard]] bool mustWaitForTheEnd(const X11KeyboardEvent& event) const;
    /// Grabs the keyboard and ungrabs it at once.
    [[nodiscard]] bool isKeyboardFree();

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11KeyboardGuard> guard_;
    std::unique_ptr<X11TapKeyboard> keyboard_;
    X11InputContext& context_;
    Log& log_;
    X11ActiveGrab activeGrab_;
    X11HeldKeys heldKeys_;
    X11EventQueue eventQueue_;
    X11TapDelivery delivery_;
    std::unique_ptr<X11InputMethod> inputMethod_;
    /// The press that was sent to the input method. Later events wait for the answer.
    std::optional<X11KeyboardEvent> asked_;

    bool isEnabled_ = false;
    Phase phase_ = Phase::hidden;
    /// The latest known real modifiers.
    std::uint32_t modifiers_ = 0;
    /// The session that was asked for or is open; none while the phase is hidden.
    std::optional<TapSession> session_;
    /// The trigger's modifier went up, and the main thread has not yet said whether that ends the session.
    bool mayBeEnding_ = false;
    /// A trigger went to another client, and its modifier is still down.
    bool hasLostTrigger_ = false;
    std::optional<Clock::time_point> lostTriggerJudgement_;
    std::optional<Clock::time_point> answerDeadline_;
    std::optional<Clock::time_point> grabRetry_;
    std::optional<Clock::time_point> grabRetryEnd_;
};

}  // namespace ferrowyn
