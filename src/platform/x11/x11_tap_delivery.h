#pragma once

#include <cstdint>

#include "platform/event_tap.h"
#include "platform/x11/x11_keyboard_event.h"
#include "platform/x11/x11_tap_keyboard.h"

namespace ferrowyn {

/// Tells the tap's callback of keys and flags, and remembers which flags it was told. Tap thread.
class X11TapDelivery {
public:
    X11TapDelivery(EventTaps::Callback callback, X11TapKeyboard& keyboard)
        : callback_(std::move(callback)), keyboard_(keyboard) {}

    TapVerdict key(const X11KeyboardEvent& event);
    /// Tells the flags when they differ from what was told. Whether the trigger's modifier went up.
    bool modifiers(std::uint32_t modifiers);
    /// Not told, but as good as: the callback learns them with the next key.
    void assumeModifiers(std::uint32_t modifiers) { flags_ = keyboard_.reportedFlags(modifiers); }
    /// A key was pressed with the trigger's modifier down, and nobody else may have told that it is.
    void noteTriggerModifier(std::uint32_t modifiers);
    /// Whatever was told is old: the flags are told next time in any case.
    void forgetModifiers() { flags_ = ~std::uint64_t{0}; }
    void disabled();

private:
    EventTaps::Callback callback_;
    X11TapKeyboard& keyboard_;
    std::uint64_t flags_ = 0;
};

}  // namespace ferrowyn
