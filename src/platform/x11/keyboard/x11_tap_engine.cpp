#include "platform/x11/keyboard/x11_tap_engine.h"

#include <utility>

#include "platform/log.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

using Kind = X11KeyboardEvent::Kind;

constexpr std::string_view category = "input";

}  // namespace

X11TapEngine::Creation X11TapEngine::create(std::unique_ptr<X11Connection> connection,
                                            std::unique_ptr<X11KeyboardGuard> guard, SwitcherModifier trigger,
                                            TapCallback callback, X11InputContext& context, Log& log) {
    auto reader = X11KeyboardReader::create(*connection);
    if (!reader) {
        return {nullptr, "The X server has no XInput 2.2 or no XKB"};
    }
    auto keyboard = X11TapKeyboard::create(*connection, trigger, log);
    if (keyboard == nullptr) {
        return {nullptr, "The X server's keymap cannot be read"};
    }
    return {std::unique_ptr<X11TapEngine>(new X11TapEngine(std::move(connection), std::move(guard), std::move(keyboard),
                                                           *reader, std::move(callback), context, log)),
            {}};
}

X11TapEngine::X11TapEngine(std::unique_ptr<X11Connection> connection, std::unique_ptr<X11KeyboardGuard> guard,
                           std::unique_ptr<X11TapKeyboard> keyboard, X11KeyboardReader reader, TapCallback callback,
                           X11InputContext& context, Log& log)
    : connection_(std::move(connection)),
      guard_(std::move(guard)),
      keyboard_(std::move(keyboard)),
      context_(context),
      log_(log),
      activeGrab_(*connection_, keyboard_->grabs()),
      eventQueue_(reader, *keyboard_, activeGrab_, heldKeys_, context),
      delivery_(std::move(callback), *keyboard_, context) {
    if (!context.inputMethodDisplay.empty()) {
        inputMethod_ = std::make_unique<X11InputMethod>(context.inputMethodDisplay, log);
    }
}

X11TapEngine::~X11TapEngine() {
    activeGrab_.repeatMissedReleases();
    activeGrab_.ungrab();
    keyboard_->grabs().remove();
    // Closing the connection would do as well, but not before this returns.
    const XcbReply<xcb_get_input_focus_reply_t> sync(
        xcb_get_input_focus_reply(connection_->get(), xcb_get_input_focus(connection_->get()), nullptr));
}

void X11TapEngine::setEnabled(bool isEnabled) {
    isEnabled_ = isEnabled;
    if (!isEnabled) {
        endSession();
    }
    applyGrabs();
}

void X11TapEngine::setTrigger(SwitcherModifier trigger) {
    keyboard_->setTrigger(trigger);
    applyGrabs();
}

bool X11TapEngine::serve() {
    receive();
    if (!connection_->isAlive()) {
        // What came before the end was for a tap that the guard has given up.
        return false;
    }
    answerGuard();
    // Whoever waits for a reply also takes in the events before it, and the descriptor does not tell of those: so until
    // a round has found nothing new.
    do {
        hearInputMethod();
        yieldToLocker();
        deliverQueue();
        handleDeadlines();
        // Only when no key waits: reading the keymap takes longer than a quick press.
        if (eventQueue_.isEmpty() && eventQueue_.hasChanges()) {
            keyboard_->refresh(eventQueue_.takeChanges());
            applyGrabs();
        }
        xcb_flush(connection_->get());
    } while (receive());
    return connection_->isAlive();
}

std::optional<X11TapEngine::Clock::time_point> X11TapEngine::deadline() const {
    std::optional<Clock::time_point> earliest;
    const auto inputMethodDeadline = inputMethod_ != nullptr ? inputMethod_->deadline() : std::nullopt;
    for (const auto& candidate : {inputMethodDeadline, answerDeadline_, sessionDeadline(), grabRetry_,
                                  lostTriggerJudgement_, heldKeys_.nextRepeat()}) {
        if (candidate && (!earliest || *candidate < *earliest)) {
            earliest = candidate;
        }
    }
    return earliest;
}

bool X11TapEngine::receive() {
    return eventQueue_.receive(phase_ == Phase::awaitingAnswer);
}

void X11TapEngine::deliverQueue() {
    while (!eventQueue_.isEmpty() && phase_ != Phase::awaitingAnswer && !asked_ &&
           !mustWaitForTheEnd(eventQueue_.front())) {
        auto event = eventQueue_.take();
        addShift(event);
        if (phase_ == Phase::open) {
            deliverInSession(event);
        } else {
            deliverHidden(event);
        }
    }
}

void X11TapEngine::addShift(X11KeyboardEvent& event) {
    if (event.kind == Kind::modifiersChanged) {
        return;
    }
    if (keyboard_->layout().isShiftKey(event.keyCode)) {
        heldKeys_.noteShift(event);
    } else if (activeGrab_.isHeld() && heldKeys_.isShiftDown()) {
        event.modifiers.effective |= XCB_MOD_MASK_SHIFT;
    }
}

void X11TapEngine::deliverHidden(const X11KeyboardEvent& event) {
    // A trigger that is still held when its session ended opens no new one.
    if (isEnabled_ && event.kind == Kind::press && !event.isRepeat && keyboard_->isTrigger(event)) {
        beginSession(event);
    } else if (event.kind == Kind::press && keyboard_->isAtSlave(event)) {
        if (event.wasHeldBack && context_.isKeyboardHeldElsewhere.load()) {
            activeGrab_.typeForHolder(event.keyCode);
        }
        activeGrab_.freeSlave(event.deviceId);
        activeGrab_.repeatMissedReleases();
    } else if (event.kind == Kind::modifiersChanged) {
        delivery_.assumeModifiers(event.modifiers.effective);
        followLostTrigger(event.modifiers.effective);
    }
}

void X11TapEngine::deliverInSession(const X11KeyboardEvent& event) {
    if (event.kind == Kind::modifiersChanged) {
        modifiers_ = event.modifiers.effective;
        deliverModifiers(modifiers_);
        return;
    }
    if (event.kind == Kind::press && keyboard_->isAtSlave(event) && !activeGrab_.isHeld()) {
        // Another program had the keyboard when this session opened without the trigger, so the trigger is still
        // grabbed.
        activeGrab_.freeSlave(event.deviceId);
        activeGrab_.repeatMissedReleases();
    }
    if (keyboard_->layout().isModifierKey(event.keyCode) || eventQueue_.isStaleRepeat(event)) {
        return;
    }
    if (!heldKeys_.belongsToSession(event)) {
        return;
    }
    if (askInputMethod(event)) {
        asked_ = event;
    } else {
        deliverKey(event);
    }
}

bool X11TapEngine::askInputMethod(const X11KeyboardEvent& event) {
    if (inputMethod_ == nullptr || event.kind != Kind::press) {
        return false;
    }
    const auto symbol = keyboard_->text().symbols(event).symbol;
    constexpr auto otherModifiers = event_flags::option | event_flags::command;
    const auto flags = keyboard_->layout().flagsOf(event.modifiers.effective);
    // The combination that turns an input method on and off, and means nothing here.
    const bool isSwitch = symbol == XKB_KEY_space && keyboard_->trigger() != SwitcherModifier::control;
    if ((flags & otherModifiers) != 0 || ((flags & event_flags::control) != 0 && !isSwitch)) {
        return false;
    }
    return inputMethod_->ask({symbol, event.keyCode, event.modifiers.effective, event.time}, context_.panel());
}

void X11TapEngine::hearInputMethod() {
    if (inputMethod_ == nullptr) {
        return;
    }
    inputMethod_->process();
    while (const auto text = inputMethod_->takeText()) {
        if (phase_ == Phase::open) {
            delivery_.text(*text);
        }
    }
    if (asked_ && !inputMethod_->isAsking()) {
        const auto press = *std::exchange(asked_, std::nullopt);
        if (!inputMethod_->hasTakenKey()) {
            deliverKey(press);
        }
    }
}

void X11TapEngine::deliverKey(const X11KeyboardEvent& event) {
    if (event.kind == Kind::press && !event.isRepeat) {
        delivery_.noteTriggerModifier(event.modifiers.effective);
    }
    if (const auto requested = delivery_.key(event).requestedSession) {
        // The session was closed a moment ago, and the message that says so is on its way.
        session_ = requested;
        mayBeEnding_ = false;
        heldKeys_.beginSession(event.keyCode);
        awaitAnswer();
    }
}

void X11TapEngine::deliverModifiers(std::uint32_t modifiers) {
    mayBeEnding_ = delivery_.modifiers(modifiers) || mayBeEnding_;
}

void X11TapEngine::handleDeadlines() {
    const auto now = Clock::now();
    if (answerDeadline_ && now >= *answerDeadline_) {
        log_.write(LogLevel::error, category, "No answer to the trigger; the keyboard is given back");
        giveRequestUp();
        // What the user typed meanwhile was for no session.
        eventQueue_.clear();
        activeGrab_.freeGrabbedSlaves();
        endSession();
    }
    if (const auto deadline = sessionDeadline(); deadline && now >= *deadline) {
        log_.write(LogLevel::error, category, "The program does not answer; the keyboard is given back");
        loseKeyboard();
    }
    if (lostTriggerJudgement_ && now >= *lostTriggerJudgement_) {
        judgeLostTrigger();
    }
    if (heldKeys_.nextRepeat() && now >= *heldKeys_.nextRepeat()) {
        repeatTrigger();
    }
    if (grabRetry_ && now >= *grabRetry_) {
        grabForOpenSession();
        deliverQueue();
    }
}

void X11TapEngine::repeatTrigger() {
    // The release may have arrived.
    receive();
    auto repeat = heldKeys_.takeRepeat();
    if (repeat && phase_ == Phase::open && eventQueue_.isEmpty()) {
        repeat->modifiers.effective = modifiers_;
        addShift(*repeat);
        deliverInSession(*repeat);
    }
}

bool X11TapEngine::mustWaitForTheEnd(const X11KeyboardEvent& event) const {
    return phase_ == Phase::open && mayBeEnding_ && event.kind == Kind::press && !event.isRepeat &&
           keyboard_->isTrigger(event);
}

void X11TapEngine::applyGrabs() {
    const bool isGuarded = guard_ != nullptr && guard_->isThere();
    if (isGuarded && isEnabled_) {
        // Before the server can hold anything back.
        guard_->setFreezingModifiers(keyboard_->triggerMask());
    }
    keyboard_->grabs().setHoldsKeysBack(isGuarded);
    keyboard_->applyGrabs(isEnabled_, activeGrab_.isHeld());
    const bool holdsKeysBack = isEnabled_ && keyboard_->grabs().holdsKeysBack();
    if (isGuarded && !holdsKeysBack) {
        guard_->setFreezingModifiers(0);
    }
    if (isEnabled_ && !activeGrab_.isHeld()) {
        log_.write(
            LogLevel::debug, category,
            holdsKeysBack ? "The shortcut is grabbed, and keys behind it are held back" : "The shortcut is grabbed");
    }
}

void X11TapEngine::reportLoss() {
    log_.write(LogLevel::error, category,
               "The program did not run for a while and has lost the keyboard; it begins anew");
    delivery_.disabled();
}

void X11TapEngine::reportEnd() {
    log_.write(LogLevel::error, category, "The keyboard's connection to the X server has ended");
    delivery_.disabled();
}

void X11TapEngine::reportLateSession() {
    log_.write(LogLevel::standard, category, "The session was opened too late and gets no keys; it is ended");
    delivery_.disabled();
}

void X11TapEngine::answerGuard() {
    if (guard_ == nullptr) {
        return;
    }
    guard_->answer();
    // That it is gone may have been noticed when it was told something.
    if (!guard_->isThere() && keyboard_->grabs().holdsKeysBack()) {
        log_.write(LogLevel::error, category, "The keyboard's guard is gone; keys are not held back any more");
        applyGrabs();
    }
}

void X11TapEngine::tellGuard(bool isHeld) {
    if (guard_ != nullptr) {
        guard_->noteHeld(isHeld);
    }
}

void X11TapEngine::yieldToLocker() {
    if (eventQueue_.takeLocker() && (phase_ != Phase::hidden || activeGrab_.isHeld())) {
        log_.write(LogLevel::standard, category, "A screen locker is starting; the keyboard is given back");
        loseKeyboard();
    }
}

void X11TapEngine::probeKeyboard() {
    if (phase_ != Phase::hidden || !context_.isKeyboardHeldElsewhere.load()) {
        return;
    }
    if (isKeyboardFree()) {
        context_.isKeyboardHeldElsewhere.store(false);
    }
}

bool X11TapEngine::isKeyboardFree() {
    tellGuard(true);
    const bool isFree = activeGrab_.probe();
    xcb_flush(connection_->get());
    tellGuard(false);
    return isFree;
}

// How a session of the tap begins, opens and ends.

void X11TapEngine::beginSession(const X11KeyboardEvent& press) {
    auto pressed = press;
    if (activeGrab_.isHeld()) {
        reportActiveWindow(activeGrab_.activeWindow());
    } else if (!grabAt(pressed)) {
        refuseSession(press);
        return;
    }
    mayBeEnding_ = false;
    hasLostTrigger_ = false;
    lostTriggerJudgement_.reset();
    keyboard_->text().reset();
    heldKeys_.beginSession(press.keyCode);
    delivery_.assumeModifiers(pressed.modifiers.effective);
    awaitAnswer();
    const auto verdict = delivery_.key(pressed);
    session_ = verdict.requestedSession;
    if (!session_) {
        phase_ = Phase::hidden;
        answerDeadline_.reset();
        if (!verdict.isSwallowed) {
            // While this tap holds the keyboard, the key would come back to it.
            activeGrab_.ungrab();
            activeGrab_.typeForHolder(press.keyCode);
        }
        ungrabKeyboard();
    }
}

bool X11TapEngine::grabAt(X11KeyboardEvent& press) {
    const bool isAtSlave = keyboard_->isAtSlave(press);
    eventQueue_.watchWindows(true);
    tellGuard(true);
    const auto state = activeGrab_.grab(isAtSlave ? std::optional(press.deviceId) : std::nullopt);
    if (!state) {
        eventQueue_.watchWindows(false);
        tellGuard(false);
        return false;
    }
    context_.isKeyboardHeldElsewhere.store(false);
    reportActiveWindow(state->activeWindow);
    // Keys that were down when the trigger was pressed: undo the queued events to get from now back to then.
    receive();
    auto keysDown = state->keysDown;
    eventQueue_.rewind(keysDown);
    keysDown.reset(press.keyCode);
    heldKeys_.noteGrab(keysDown, keyboard_->layout());
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
        if (!eventQueue_.hasReleaseOf(press.keyCode)) {
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
    activeGrab_.typeForHolder(press.keyCode);
    // So is what was held back behind it.
    receive();
    activeGrab_.repeatMissedReleases();
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
    if (phase_ == Phase::hidden && !activeGrab_.isHeld() && isKeyboardFree()) {
        context_.isKeyboardHeldElsewhere.store(false);
        if (context_.reportLostTrigger) {
            context_.reportLostTrigger();
        }
    }
}

void X11TapEngine::openSession(TapSession session) {
    if (!isEnabled_) {
        return;
    }
    // Whether or not it is the one that was asked for: another one may have been opened from the menu meanwhile.
    session_ = session;
    answerDeadline_.reset();
    mayBeEnding_ = false;
    if (std::exchange(phase_, Phase::open) == Phase::open) {
        return;
    }
    if (!activeGrab_.isHeld()) {
        grabRetryEnd_ = Clock::now() + grabRetryTimeout;
        grabForOpenSession();
    }
}

void X11TapEngine::closeSession(TapSession session) {
    if (session_ == session) {
        endSession();
    }
}

void X11TapEngine::grabForOpenSession() {
    grabRetry_.reset();
    receive();
    eventQueue_.watchWindows(true);
    tellGuard(true);
    const auto state = activeGrab_.grab(std::nullopt);
    if (!state) {
        eventQueue_.watchWindows(false);
        tellGuard(false);
        keyboard_->grabs().install();
        if (Clock::now() < grabRetryEnd_) {
            grabRetry_ = Clock::now() + grabRetryInterval;
        } else {
            log_.write(LogLevel::standard, category, "Another program holds the keyboard; the panel gets no keys");
            context_.isKeyboardHeldElsewhere.store(true);
        }
        return;
    }
    context_.isKeyboardHeldElsewhere.store(false);
    keyboard_->text().reset();
    heldKeys_.noteGrab(state->keysDown, keyboard_->layout());
    heldKeys_.beginSession(std::nullopt);
    delivery_.forgetModifiers();
    deliverModifiers(state->modifiers);
}

void X11TapEngine::endSession() {
    session_.reset();
    mayBeEnding_ = false;
    answerDeadline_.reset();
    grabRetry_.reset();
    const bool wasHidden = phase_ == Phase::hidden;
    phase_ = Phase::hidden;
    asked_.reset();
    if (inputMethod_ != nullptr && !wasHidden) {
        inputMethod_->reset();
    }
    if (wasHidden && !activeGrab_.isHeld()) {
        return;
    }
    receive();
    // Keys of the session that ended belong to nobody and are dropped; but the next trigger may be among them.
    deliverQueue();
    if (phase_ == Phase::hidden) {
        ungrabKeyboard();
    }
}

void X11TapEngine::loseKeyboard() {
    isEnabled_ = false;
    onLoss();
    giveRequestUp();
    endSession();
    applyGrabs();
    delivery_.disabled();
}

std::optional<X11TapEngine::Clock::time_point> X11TapEngine::sessionDeadline() const {
    const auto since = phase_ == Phase::open ? delivery_.unansweredSince() : std::nullopt;
    return since ? std::optional(*since + sessionTimeout) : std::nullopt;
}

void X11TapEngine::giveRequestUp() const {
    if (phase_ == Phase::awaitingAnswer && session_) {
        onRequestGivenUp(*session_);
    }
}

void X11TapEngine::ungrabKeyboard() {
    heldKeys_.releaseAll(activeGrab_);
    if (isEnabled_) {
        keyboard_->grabs().install();
    }
    activeGrab_.ungrab();
    heldKeys_.releaseEarlierKeys(activeGrab_);
    eventQueue_.watchWindows(false);
    xcb_flush(connection_->get());
    tellGuard(false);
}

}  // namespace ferrowyn
