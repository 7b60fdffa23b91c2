#include "platform/x11/keyboard/x11_tap_delivery.h"

#include "platform/x11/keyboard/x11_keyboard_event.h"

namespace ferrowyn {

using Kind = X11KeyboardEvent::Kind;

TapVerdict X11TapDelivery::key(const X11KeyboardEvent& event) {
    const X11TapEvent tapEvent(event.kind == Kind::press ? TapEvent::Type::keyDown : TapEvent::Type::keyUp,
                               keyboard_.flagsOf(event), keyboard_.virtualKeyCodeOf(event), keyboard_.text(), event);
    const auto verdict = callback_(tapEvent);
    askMainThread();
    if (event.kind == Kind::press && !tapEvent.wasTyped()) {
        keyboard_.text().reset();
    }
    return verdict;
}

void X11TapDelivery::text(const std::u16string& text) {
    callback_(X11TapEvent(text));
    askMainThread();
    keyboard_.text().reset();
}

bool X11TapDelivery::modifiers(std::uint32_t modifiers) {
    const auto flags = keyboard_.flagsOf(modifiers);
    if (flags == flags_) {
        return false;
    }
    flags_ = flags;
    const bool mayEndSession = callback_(X11TapEvent(TapEvent::Type::flagsChanged, flags)).mayEndSession;
    if (mayEndSession) {
        // A trigger now waits for the main thread's answer. A question that is still open was asked before this event,
        // so its answer says nothing about the event.
        postQuestion();
    }
    return mayEndSession;
}

void X11TapDelivery::noteTriggerModifier(std::uint32_t modifiers) {
    flags_ |= keyboard_.flagsOf(modifiers) & flagMask(keyboard_.trigger());
}

void X11TapDelivery::disabled() {
    callback_(X11TapEvent(TapEvent::Type::disabledByUserInput, 0));
}

void X11TapDelivery::askMainThread() {
    if (hasAnswered_->load()) {
        postQuestion();
    }
}

void X11TapDelivery::postQuestion() {
    if (!context_.postToMainThread) {
        return;
    }
    if (hasAnswered_->load()) {
        askedAt_ = Clock::now();
    }
    hasAnswered_ = std::make_shared<std::atomic<bool>>(false);
    context_.postToMainThread([answer = hasAnswered_] { answer->store(true); });
}

std::optional<X11TapDelivery::Clock::time_point> X11TapDelivery::unansweredSince() const {
    return hasAnswered_->load() ? std::nullopt : std::optional(askedAt_);
}

}  // namespace ferrowyn
