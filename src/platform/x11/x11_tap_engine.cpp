#include "platform/x11/x11_tap_engine.h"

#include <algorithm>
#include <utility>

#include "platform/log.h"
#include "platform/x11/x11_input_context.h"
#include "platform/x11/x11_key_map.h"
#include "platform/x11/x11_tap_event.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

using Kind = X11KeyboardEvent::Kind;

constexpr std::string_view category = "input";

}  // namespace

std::unique_ptr<X11TapEngine> X11TapEngine::create(std::unique_ptr<X11Connection> connection, SwitcherModifier trigger,
                                                   EventTaps::Callback callback, X11InputContext& context, Log& log) {
    auto reader = X11KeyboardReader::create(*connection);
    if (!reader) {
        log.write(LogLevel::error, category, "The X server has no XInput 2.2 or no XKB");
        return nullptr;
    }
    std::unique_ptr<X11TapEngine> engine(
        new X11TapEngine(std::move(connection), *reader, trigger, std::move(callback), context, log));
    return engine->layout_ != nullptr ? std::move(engine) : nullptr;
}

X11TapEngine::X11TapEngine(std::unique_ptr<X11Connection> connection, X11KeyboardReader reader,
                           SwitcherModifier trigger, EventTaps::Callback callback, X11InputContext& context, Log& log)
    : connection_(std::move(connection)),
      reader_(reader),
      trigger_(trigger),
      callback_(std::move(callback)),
      context_(context),
      log_(log),
      xkbContext_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)),
      text_(xkbContext_.get()),
      grabs_(*connection_, log),
      seizure_(*connection_, grabs_) {
    grabs_.readDevices();
    refreshLayout();
}

X11TapEngine::~X11TapEngine() {
    seizure_.repeatMissedReleases();
    seizure_.giveBack();
    grabs_.remove();
    // Closing the connection would do as well, but not before this returns.
    const XcbReply<xcb_get_input_focus_reply_t> sync(
        xcb_get_input_focus_reply(connection_->get(), xcb_get_input_focus(connection_->get()), nullptr));
}

void X11TapEngine::handle(const X11TapRequest& request) {
    switch (request.kind) {
        case X11TapRequest::Kind::enable:
            isEnabled_ = true;
            refreshGrabs();
            break;
        case X11TapRequest::Kind::disable:
            isEnabled_ = false;
            endSession();
            refreshGrabs();
            break;
        case X11TapRequest::Kind::setTrigger:
            trigger_ = request.trigger;
            refreshGrabs();
            break;
        case X11TapRequest::Kind::openSession:
            openSession();
            break;
        case X11TapRequest::Kind::closeSession:
            if (!std::exchange(isLateCloseExpected_, false)) {
                endSession();
            }
            break;
        case X11TapRequest::Kind::probeKeyboard:
            probeKeyboard();
            break;
        case X11TapRequest::Kind::keyboardUnavailable:
            isEnabled_ = false;
            endSession();
            refreshGrabs();
            callback_(X11TapEvent(TapEvent::Type::disabledByUserInput, 0));
            break;
    }
}

bool X11TapEngine::serve() {
    // Whoever waits for a reply also takes in the events before it, and the descriptor does not tell of those: so until
    // a round has found nothing new.
    do {
        deliverQueue();
        handleDeadlines();
        // Only when no key waits: reading the keymap takes longer than a quick press.
        if (queue_.empty() && (changes_.layout || changes_.devices)) {
            applyChanges();
        }
        xcb_flush(connection_->get());
    } while (receive());
    return connection_->isAlive();
}

std::optional<X11TapEngine::Clock::time_point> X11TapEngine::deadline() const {
    std::optional<Clock::time_point> earliest;
    const auto waitingEnd = queue_.empty() || phase_ != Phase::open ? std::nullopt : endingUntil_;
    const auto repeat = heldTrigger_ ? std::optional(heldTrigger_->repeatAt) : std::nullopt;
    for (const auto& candidate : {answerDeadline_, waitingEnd, seizureRetry_, repeat}) {
        if (candidate && (!earliest || *candidate < *earliest)) {
            earliest = candidate;
        }
    }
    return earliest;
}

bool X11TapEngine::receive() {
    const bool hasRead = reader_.readAvailable(changes_, [this](const X11KeyboardEvent& event) { receive(event); });
    if (seizure_.isHeld()) {
        seizure_.repeatMissedReleases();
    }
    return hasRead;
}

void X11TapEngine::receive(const X11KeyboardEvent& event) {
    noteHeldKeys(event);
    if (event.kind == Kind::rawRelease) {
        return;
    }
    if (event.kind != Kind::modifiersChanged && grabs_.isSlave(event.deviceId)) {
        if (event.kind == Kind::release) {
            seizure_.noteMissedRelease(event.keyCode);
            receiveMissedModifier(event);
        } else if (seizure_.isHeld()) {
            // A trigger at another keyboard, or one that came before the passive grabs were gone.
            seizure_.freeSlave(event.deviceId);
        }
    }
    noteUser(event);
    if (phase_ == Phase::awaitingAnswer && event.isRepeat) {
        return;  // a backlog of repeats would run on long after the key went up
    }
    queue_.push_back(event);
}

void X11TapEngine::receiveMissedModifier(const X11KeyboardEvent& release) {
    // The server ignores the repeated release when the user has pressed the key again by then, and for the master the
    // modifier was never up; but it was, and a session hangs on it.
    const auto modifiers = layout_->modifiersOfKey(release.keyCode);
    if ((modifiers & layout_->maskOf(trigger_)) != 0) {
        auto change = release;
        change.kind = Kind::modifiersChanged;
        change.modifiers.effective &= ~modifiers;
        queue_.push_back(change);
    }
}

void X11TapEngine::noteHeldKeys(const X11KeyboardEvent& event) {
    if (event.kind == Kind::modifiersChanged || layout_->isModifierKey(event.keyCode)) {
        return;
    }
    // Another key takes the repeating over, as on any keyboard.
    const bool endsTrigger = event.kind == Kind::press ? !grabs_.isSlave(event.deviceId)
                                                       : heldTrigger_ && heldTrigger_->press.keyCode == event.keyCode;
    if (endsTrigger) {
        heldTrigger_.reset();
    }
    if (event.kind == Kind::release) {
        heldKeys_.erase(event.keyCode);
    } else if (event.kind == Kind::press && !grabs_.isSlave(event.deviceId)) {
        heldKeys_.insert(event.keyCode);
    }
}

void X11TapEngine::deliverQueue() {
    while (!queue_.empty() && phase_ != Phase::awaitingAnswer && !mustWaitForTheEnd(queue_.front())) {
        const auto event = queue_.front();
        queue_.pop_front();
        if (phase_ == Phase::open) {
            deliverInSession(event);
        } else {
            deliverHidden(event);
        }
    }
}

void X11TapEngine::deliverHidden(const X11KeyboardEvent& event) {
    const bool isAtSlave = grabs_.isSlave(event.deviceId);
    // A trigger that is still held when its session ended opens no new one.
    if (isEnabled_ && event.kind == Kind::press && !event.isRepeat && isTrigger(event)) {
        beginSession(event);
    } else if (isAtSlave && event.kind == Kind::press) {
        seizure_.freeSlave(event.deviceId);
        seizure_.repeatMissedReleases();
    } else if (event.kind == Kind::modifiersChanged) {
        flags_ = reportedFlags(event.modifiers.effective);
    }
}

void X11TapEngine::beginSession(const X11KeyboardEvent& press) {
    auto pressed = press;
    if (seizure_.isHeld()) {
        reportActiveWindow(seizure_.activeWindow());
    } else {
        const bool isAtSlave = grabs_.isSlave(press.deviceId);
        const auto state = seizure_.take(isAtSlave ? std::optional(press.deviceId) : std::nullopt);
        if (!state) {
            refuseSession(press);
            return;
        }
        context_.isKeyboardHeldElsewhere.store(false);
        reportActiveWindow(state->activeWindow);
        if (isAtSlave) {
            // A slave knows its own modifiers only, and its own pointer while it floats; the grab matched the
            // master's. Shift may be on another keyboard.
            context_.setPointer(state->pointerX, state->pointerY);
            pressed.modifiers.effective |= layout_->maskOf(trigger_);
            pressed.modifiers.effective |= state->modifiers & XCB_MOD_MASK_SHIFT;
            holdTrigger(pressed, *state);
        }
    }
    endingUntil_.reset();
    text_.reset();
    flags_ = reportedFlags(pressed.modifiers.effective);
    phase_ = Phase::awaitingAnswer;
    answerDeadline_ = Clock::now() + answerTimeout;
    const auto verdict = deliverKey(pressed);
    if (!verdict.requestsSession) {
        phase_ = Phase::hidden;
        answerDeadline_.reset();
        if (!verdict.isSwallowed) {
            seizure_.typeForHolder(press.keyCode);
        }
        giveKeyboardBack();
    }
}

void X11TapEngine::reportActiveWindow(xcb_window_t window) const {
    if (context_.reportActiveWindow) {
        context_.reportActiveWindow(window);
    }
}

void X11TapEngine::holdTrigger(const X11KeyboardEvent& press, const X11KeyboardSeizure::State& state) {
    modifiers_ = state.modifiers;
    const bool isUpAlready = std::any_of(queue_.begin(), queue_.end(), [&press](const X11KeyboardEvent& later) {
        return later.kind == Kind::release && later.keyCode == press.keyCode;
    });
    if (!isUpAlready && state.repeatInterval.count() > 0) {
        heldTrigger_ = HeldTrigger{press, Clock::now() + state.repeatDelay, state.repeatInterval};
    }
}

void X11TapEngine::refuseSession(const X11KeyboardEvent& press) {
    if (!context_.isKeyboardHeldElsewhere.exchange(true)) {
        log_.write(LogLevel::standard, category, "Another program holds the keyboard; the switcher stays closed");
    }
    // The combination is that program's: a virtual machine in full screen wants it.
    seizure_.typeForHolder(press.keyCode);
    refreshGrabs();
}

void X11TapEngine::deliverInSession(const X11KeyboardEvent& event) {
    if (event.kind == Kind::modifiersChanged) {
        modifiers_ = event.modifiers.effective;
        deliverFlags(event.modifiers.effective);
        return;
    }
    if (layout_->isModifierKey(event.keyCode) || isStaleRepeat(event)) {
        return;
    }
    if (event.kind == Kind::press && !event.isRepeat) {
        // The modifier is down again, and nobody else may have told.
        flags_ |= reportedFlags(event.modifiers.effective) & flagMask(trigger_);
    }
    if (deliverKey(event).requestsSession) {
        // The session was closed a moment ago, and the message that says so is on its way: it is not the answer.
        isLateCloseExpected_ = true;
        phase_ = Phase::awaitingAnswer;
        answerDeadline_ = Clock::now() + answerTimeout;
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
    const auto state = seizure_.take(std::nullopt);
    if (!state) {
        grabs_.install();
        if (Clock::now() < seizureRetryEnd_) {
            seizureRetry_ = Clock::now() + seizureRetryInterval;
        } else {
            log_.write(LogLevel::standard, category, "Another program holds the keyboard; the panel gets no keys");
            context_.isKeyboardHeldElsewhere.store(true);
        }
        return;
    }
    context_.isKeyboardHeldElsewhere.store(false);
    text_.reset();
    flags_ = ~std::uint64_t{0};  // whatever the callback knew is old
    deliverFlags(state->modifiers);
}

void X11TapEngine::endSession() {
    isLateCloseExpected_ = false;
    answerDeadline_.reset();
    endingUntil_.reset();
    seizureRetry_.reset();
    const bool wasHidden = phase_ == Phase::hidden;
    phase_ = Phase::hidden;
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

void X11TapEngine::giveKeyboardBack() {
    // A key that is still down would go on repeating into the window that comes to the front, or reach the manager's
    // own binding while the modifier is held. Whoever gets the keyboard never saw its press and misses no release.
    for (const auto keyCode : heldKeys_) {
        seizure_.releaseForMaster(keyCode);
    }
    heldKeys_.clear();
    heldTrigger_.reset();
    if (isEnabled_) {
        grabs_.install();
    }
    seizure_.giveBack();
    xcb_flush(connection_->get());
}

void X11TapEngine::handleDeadlines() {
    const auto now = Clock::now();
    if (answerDeadline_ && now >= *answerDeadline_) {
        log_.write(LogLevel::error, category, "No answer to the trigger; the keyboard is given back");
        // What the user typed meanwhile was for no session.
        queue_.clear();
        endSession();
    }
    if (endingUntil_ && now >= *endingUntil_) {
        endingUntil_.reset();
        deliverQueue();
    }
    if (heldTrigger_ && now >= heldTrigger_->repeatAt) {
        repeatTrigger();
    }
    if (seizureRetry_ && now >= *seizureRetry_) {
        seizeForOpenSession();
        deliverQueue();
    }
}

void X11TapEngine::repeatTrigger() {
    receive();
    if (!heldTrigger_) {
        return;
    }
    // From now, not from when it was due: repeats that were missed are not made up for.
    heldTrigger_->repeatAt = Clock::now() + heldTrigger_->interval;
    if (phase_ == Phase::open && queue_.empty()) {
        auto repeat = heldTrigger_->press;
        repeat.isRepeat = true;
        repeat.modifiers.effective = modifiers_;
        deliverInSession(repeat);
    }
}

TapVerdict X11TapEngine::deliverKey(const X11KeyboardEvent& event) {
    const X11TapEvent tapEvent(event.kind == Kind::press ? TapEvent::Type::keyDown : TapEvent::Type::keyUp,
                               reportedFlags(event.modifiers.effective), layout_->virtualKeyCodeOf(event.keyCode),
                               text_, event);
    const auto verdict = callback_(tapEvent);
    if (event.kind == Kind::press && !tapEvent.wasTyped()) {
        text_.reset();
    }
    return verdict;
}

void X11TapEngine::deliverFlags(std::uint32_t modifiers) {
    const auto flags = reportedFlags(modifiers);
    if (flags == flags_) {
        return;
    }
    const bool wasHeld = (flags_ & flagMask(trigger_)) != 0;
    const bool isHeld = (flags & flagMask(trigger_)) != 0;
    flags_ = flags;
    if (wasHeld && !isHeld) {
        endingUntil_ = Clock::now() + endingGrace;
    }
    callback_(X11TapEvent(TapEvent::Type::flagsChanged, flags));
}

std::uint64_t X11TapEngine::reportedFlags(std::uint32_t modifiers) const {
    auto flags = layout_->flagsOf(modifiers);
    if (trigger_ != SwitcherModifier::control && (flags & event_flags::control) != 0) {
        flags |= event_flags::command;
    }
    return flags;
}

bool X11TapEngine::isTrigger(const X11KeyboardEvent& event) const {
    if (std::find(triggerKeyCodes_.begin(), triggerKeyCodes_.end(), event.keyCode) == triggerKeyCodes_.end()) {
        return false;
    }
    // At a slave only the grabbed combinations arrive, and the modifier may be down on another keyboard.
    const auto mask = layout_->maskOf(trigger_);
    return grabs_.isSlave(event.deviceId) || (event.modifiers.effective & mask) != 0;
}

bool X11TapEngine::isStaleRepeat(const X11KeyboardEvent& event) const {
    return event.isRepeat && std::any_of(queue_.begin(), queue_.end(), [&event](const X11KeyboardEvent& later) {
               return later.kind != Kind::modifiersChanged && later.keyCode == event.keyCode;
           });
}

bool X11TapEngine::mustWaitForTheEnd(const X11KeyboardEvent& event) const {
    return phase_ == Phase::open && endingUntil_ && Clock::now() < *endingUntil_ && event.kind == Kind::press &&
           !event.isRepeat && isTrigger(event);
}

void X11TapEngine::applyChanges() {
    const auto changes = std::exchange(changes_, {});
    if (changes.devices) {
        grabs_.readDevices();
    }
    if (changes.layout) {
        refreshLayout();
    }
    refreshGrabs();
}

void X11TapEngine::refreshLayout() {
    auto layout = X11KeyboardLayout::read(*connection_, xkbContext_.get());
    if (layout == nullptr) {
        log_.write(LogLevel::error, category, "The X server's keymap cannot be read");
        return;
    }
    layout_ = std::move(layout);
    text_.setLayout(*layout_);
}

void X11TapEngine::refreshGrabs() {
    triggerKeyCodes_.clear();
    for (const auto key : {virtual_key::tab, virtual_key::grave}) {
        const auto keyCode = layout_->keyCodeOf(key);
        if (keyCode && (key == virtual_key::tab || trigger_ == SwitcherModifier::command)) {
            triggerKeyCodes_.push_back(*keyCode);
        }
    }
    const auto mask = layout_->maskOf(trigger_);
    if (mask == 0) {
        log_.write(LogLevel::error, category, "No key of the keyboard has the switcher's modifier");
        triggerKeyCodes_.clear();
    }
    std::vector<std::uint32_t> modifiers;
    for (const auto locks : layout_->lockCombinations()) {
        modifiers.push_back(mask | locks);
        modifiers.push_back(mask | XCB_MOD_MASK_SHIFT | locks);
    }
    grabs_.setKeys(triggerKeyCodes_, std::move(modifiers));
    grabs_.watchModifiers(isEnabled_);
    if (!isEnabled_) {
        grabs_.remove();
    } else if (!seizure_.isHeld()) {
        grabs_.install();
    }
}

void X11TapEngine::noteUser(const X11KeyboardEvent& event) {
    context_.lastUserTime.store(event.time, std::memory_order_relaxed);
    if (event.kind != Kind::modifiersChanged && !grabs_.isSlave(event.deviceId)) {
        context_.setPointer(event.rootX, event.rootY);
    }
}

void X11TapEngine::probeKeyboard() {
    if (phase_ == Phase::hidden && context_.isKeyboardHeldElsewhere.load() && seizure_.probe()) {
        context_.isKeyboardHeldElsewhere.store(false);
    }
}

}  // namespace ferrowyn
