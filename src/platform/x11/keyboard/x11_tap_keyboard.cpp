#include "platform/x11/keyboard/x11_tap_keyboard.h"

#include <algorithm>
#include <utility>

#include "platform/keyboard_tap.h"
#include "platform/log.h"
#include "platform/x11/keyboard/x11_keyboard_layout.h"
#include "platform/x11/x11_connection.h"

namespace ferrowyn {

namespace {

constexpr std::string_view category = "input";

}  // namespace

std::unique_ptr<X11TapKeyboard> X11TapKeyboard::create(const X11Connection& connection, SwitcherModifier trigger,
                                                       Log& log) {
    std::unique_ptr<X11TapKeyboard> keyboard(new X11TapKeyboard(connection, trigger, log));
    return keyboard->layout_ != nullptr ? std::move(keyboard) : nullptr;
}

X11TapKeyboard::X11TapKeyboard(const X11Connection& connection, SwitcherModifier trigger, Log& log)
    : connection_(connection),
      trigger_(trigger),
      log_(log),
      xkbContext_(xkb_context_new(XKB_CONTEXT_NO_FLAGS)),
      text_(xkbContext_.get()),
      grabs_(connection, log) {
    grabs_.readDevices();
    static_cast<void>(readLayout());
}

void X11TapKeyboard::refresh(const X11KeyboardReader::Changes& changes) {
    if (changes.devices) {
        grabs_.readDevices();
    }
    if (changes.layout && !readLayout()) {
        log_.write(LogLevel::error, category, "The X server's keymap cannot be read");
    }
}

bool X11TapKeyboard::readLayout() {
    auto layout = X11KeyboardLayout::read(connection_, xkbContext_.get());
    if (layout == nullptr) {
        return false;
    }
    layout_ = std::move(layout);
    text_.setLayout(*layout_);
    return true;
}

void X11TapKeyboard::applyGrabs(bool isEnabled, bool isKeyboardHeld) {
    triggerKeyCodes_.clear();
    for (const auto key : triggerKeys(flagMask(trigger_))) {
        const auto& keyCodes = layout_->keyCodesOf(key);
        triggerKeyCodes_.insert(triggerKeyCodes_.end(), keyCodes.begin(), keyCodes.end());
    }
    const auto mask = triggerMask();
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
    grabs_.watchModifiers(isEnabled);
    if (!isEnabled) {
        grabs_.remove();
        grabs_.forgetRefusal();
    } else if (!isKeyboardHeld) {
        grabs_.install();
    }
}

bool X11TapKeyboard::isTriggerKey(std::uint32_t keyCode) const {
    return std::find(triggerKeyCodes_.begin(), triggerKeyCodes_.end(), keyCode) != triggerKeyCodes_.end();
}

bool X11TapKeyboard::isTrigger(const X11KeyboardEvent& event) const {
    if (!isTriggerKey(event.keyCode)) {
        return false;
    }
    // A grab on a slave delivers only the grabbed combinations, and the keys that were frozen after them. The modifier
    // may be down on another keyboard.
    return (isAtSlave(event) && !event.wasHeldBack) || (event.modifiers.effective & triggerMask()) != 0;
}

bool X11TapKeyboard::isAtSlave(const X11KeyboardEvent& event) const {
    return event.kind != X11KeyboardEvent::Kind::modifiersChanged && grabs_.isSlave(event.deviceId);
}

std::uint16_t X11TapKeyboard::virtualKeyCodeOf(const X11KeyboardEvent& event) {
    return layout_->virtualKeyCodeOf(event.keyCode, text_.symbols(event));
}

std::uint64_t X11TapKeyboard::flagsOf(const X11KeyboardEvent& event) const {
    auto flags = flagsOf(event.modifiers.effective);
    const bool isShortcut = trigger_ != SwitcherModifier::control && !isTriggerKey(event.keyCode);
    if (isShortcut && (flags & event_flags::control) != 0) {
        flags |= event_flags::command;
    }
    return flags;
}

}  // namespace ferrowyn
