#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "platform/event_tap.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/keyboard/x11_keyboard_event.h"
#include "platform/x11/keyboard/x11_tap_keyboard.h"

namespace ferrowyn {

/// Tells the tap's callback of keys and flags, remembers which flags it was told, and notices when the main thread,
/// which the callback passes them on to, takes none. Tap thread.
class X11TapDelivery {
public:
    using Clock = std::chrono::steady_clock;

    X11TapDelivery(EventTaps::Callback callback, X11TapKeyboard& keyboard, X11InputContext& context)
        : callback_(std::move(callback)), keyboard_(keyboard), context_(context) {}

    TapVerdict key(const X11KeyboardEvent& event);
    /// Text that no single key has typed.
    void text(const std::u16string& text);
    /// Tells the flags when they differ from what was told. Whether that may end the session, which the main thread
    /// will say.
    [[nodiscard]] bool modifiers(std::uint32_t modifiers);
    /// Not told, but as good as: the callback learns them with the next key.
    void assumeModifiers(std::uint32_t modifiers) { flags_ = keyboard_.flagsOf(modifiers); }
    /// A key was pressed with the trigger's modifier down, and nobody else may have told that it is.
    void noteTriggerModifier(std::uint32_t modifiers);
    /// Whatever was told is old: the flags are told next time in any case.
    void forgetModifiers() { flags_ = ~std::uint64_t{0}; }
    void disabled();
    /// Since when the main thread has answered nothing: a key that was told it then still waits there. Nothing while it
    /// keeps up.
    [[nodiscard]] std::optional<Clock::time_point> unansweredSince() const;

private:
    void askMainThread();

    EventTaps::Callback callback_;
    X11TapKeyboard& keyboard_;
    X11InputContext& context_;
    /// The latest question to the main thread, set there. Shared: it may come to it long after this object has gone.
    std::shared_ptr<std::atomic<bool>> hasAnswered_ = std::make_shared<std::atomic<bool>>(true);
    Clock::time_point askedAt_;
    std::uint64_t flags_ = 0;
};

}  // namespace ferrowyn
