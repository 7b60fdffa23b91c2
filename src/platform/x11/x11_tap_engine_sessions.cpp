// How a session of the tap begins, opens and ends.

#include "platform/log.h"
#include "platform/x11/x11_input_context.h"
#include "platform/x11/x11_tap_engine.h"

namespace ferrowyn {

namespace {

constexpr std::string_view category = "input";

}  // namespace

void X11TapEngine::beginSession(const X11KeyboardEvent& press) {
    auto pressed = press;
    if (seizure_.isHeld()) {
        reportActiveWindow(seizure_.activeWindow());
    } else if (!seizeAt(pressed)) {
        refuseSession(press);
        return;
    }
    endingUntil_.reset();
    hasLostTrigger_ = false;
    lostTriggerJudgement_.reset();
    keyboard_->text().reset();
    heldKeys_.beginSession(press.keyCode);
    delivery_.assumeModifiers(pressed.modifiers.effective);
    awaitAnswer();
    const auto verdict = delivery_.key(pressed);
    if (!verdict.requestsSession) {
        phase_ = Phase::hidden;
        answerDeadline_.reset();
        if (!verdict.isSwallowed) {
            // While this tap holds the keyboard, the key would come back to it.
            seizure_.giveBack();
            seizure_.typeForHolder(press.keyCode);
        }
        giveKeyboardBack();
    }
}

bool X11TapEngine::seizeAt(X11KeyboardEvent& press) {
    const bool isAtSlave = keyboard_->isAtSlave(press);
    reception_.watchWindows(true);
    tellGuard(true);
    const auto state = seizure_.take(isAtSlave ? std::optional(press.deviceId) : std::nullopt);
    if (!state) {
        reception_.watchWindows(false);
        tellGuard(false);
        return false;
    }
    context_.isKeyboardHeldElsewhere.store(false);
    reportActiveWindow(state->activeWindow);
    // Keys that were down when the trigger was pressed: undo the queued events to get from now back to then.
    receive();
    auto keysDown = state->keysDown;
    reception_.rewind(keysDown);
    keysDown.reset(press.keyCode);
    heldKeys_.noteTaken(keysDown, keyboard_->layout());
    if (isAtSlave) {
        // The event has the slave's modifiers and, while the slave floats, the slave's pointer, but the grab matched
        // the master's modifiers. Shift may be down on another keyboard.
        context_.setPointer(state->pointerX, state->pointerY);
        press.modifiers.effective |= keyboard_->triggerMask() | (state->modifiers & XCB_MOD_MASK_SHIFT);
        addShift(press);
        modifiers_ = state->modifiers;
        // What the server held back has arrived by now. Releases among it are repeated before the callback hears of the
        // trigger, and the trigger's key may have gone up already.
        receive();
        if (!reception_.hasReleaseOf(press.keyCode)) {
            heldKeys_.holdTrigger(press, *state);
        }
    }
    return true;
}

void X11TapEngine::awaitAnswer() {
    phase_ = Phase::awaitingAnswer;
    answerDeadline_ = Clock::now() + answerTimeout;
}

void X11TapEngine::reportActiveWindow(xcb_window_t window) const {
    if (context_.reportActiveWindow) {
        context_.reportActiveWindow(window);
    }
}

void X11TapEngine::refuseSession(const X11KeyboardEvent& press) {
    if (!context_.isKeyboardHeldElsewhere.exchange(true)) {
        log_.write(LogLevel::standard, category, "Another program holds the keyboard; the switcher stays closed");
    }
    // The combination is that program's: a virtual machine in full screen wants it.
    seizure_.typeForHolder(press.keyCode);
    // So is what was held back behind it.
    receive();
    seizure_.repeatMissedReleases();
    applyGrabs();
    hasLostTrigger_ = true;
    lostTriggerJudgement_.reset();
}

void X11TapEngine::followLostTrigger(std::uint32_t modifiers) {
    if (hasLostTrigger_ && (modifiers & keyboard_->triggerMask()) == 0) {
        hasLostTrigger_ = false;
        lostTriggerJudgement_ = Clock::now() + lostTriggerGrace;
    }
}

void X11TapEngine::judgeLostTrigger() {
    lostTriggerJudgement_.reset();
    // A locker or a password dialog holds on. Once it is asked here, the keyboard's holder need not be asked again.
    if (phase_ == Phase::hidden && !seizure_.isHeld() && isKeyboardFree()) {
        context_.isKeyboardHeldElsewhere.store(false);
        if (context_.reportLostTrigger) {
            context_.reportLostTrigger();
        }
    }
}

void X11TapEngine::openSession() {
    isLateCloseExpected_ = false;
    answerDeadline_.reset();
    endingUntil_.reset();
    if (phase_ == Phase::open || !isEnabled_) {
        return;
    }
    phase_ = Phase::open;
    if (!seizure_.isHeld()) {
        seizureRetryEnd_ = Clock::now() + seizureRetryTimeout;
        seizeForOpenSession();
    }
}

void X11TapEngine::seizeForOpenSession() {
    seizureRetry_.reset();
    receive();
    reception_.watchWindows(true);
    tellGuard(true);
    const auto state = seizure_.take(std::nullopt);
    if (!state) {
        reception_.watchWindows(false);
        tellGuard(false);
        keyboard_->grabs().install();
        if (Clock::now() < seizureRetryEnd_) {
            seizureRetry_ = Clock::now() + seizureRetryInterval;
        } else {
            log_.write(LogLevel::standard, category, "Another program holds the keyboard; the panel gets no keys");
            context_.isKeyboardHeldElsewhere.store(true);
        }
        return;
    }
    context_.isKeyboardHeldElsewhere.store(false);
    keyboard_->text().reset();
    heldKeys_.noteTaken(state->keysDown, keyboard_->layout());
    heldKeys_.beginSession(std::nullopt);
    delivery_.forgetModifiers();
    if (delivery_.modifiers(state->modifiers)) {
        endingUntil_ = Clock::now() + endingGrace;
    }
}

void X11TapEngine::endSession() {
    isLateCloseExpected_ = false;
    answerDeadline_.reset();
    endingUntil_.reset();
    seizureRetry_.reset();
    const bool wasHidden = phase_ == Phase::hidden;
    phase_ = Phase::hidden;
    asked_.reset();
    if (inputMethod_ != nullptr && !wasHidden) {
        inputMethod_->reset();
    }
    if (wasHidden && !seizure_.isHeld()) {
        return;
    }
    receive();
    // Keys of the session that ended belong to nobody and are dropped; but the next trigger may be among them.
    deliverQueue();
    if (phase_ == Phase::hidden) {
        giveKeyboardBack();
    }
}

/// Another program needs the keyboard, or the main thread does not take its keys. The tap is disabled; its owner ends
/// the session and enables it again.
void X11TapEngine::loseKeyboard() {
    isEnabled_ = false;
    onLoss();
    endSession();
    applyGrabs();
    delivery_.disabled();
}

std::optional<X11TapEngine::Clock::time_point> X11TapEngine::sessionDeadline() const {
    const auto since = phase_ == Phase::open ? delivery_.unansweredSince() : std::nullopt;
    return since ? std::optional(*since + sessionTimeout) : std::nullopt;
}

void X11TapEngine::giveKeyboardBack() {
    heldKeys_.releaseAll(seizure_);
    if (isEnabled_) {
        keyboard_->grabs().install();
    }
    seizure_.giveBack();
    heldKeys_.releaseEarlierKeys(seizure_);
    reception_.watchWindows(false);
    xcb_flush(connection_->get());
    tellGuard(false);
}

}  // namespace ferrowyn
