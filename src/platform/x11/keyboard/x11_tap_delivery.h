#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "platform/keyboard_tap.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/keyboard/x11_keyboard_event.h"
#include "platform/x11/keyboard/x11_tap_keyboard.h"

namespace ferrowyn {

/// Delivers keys and flags to the tap's callback, remembers the flags that were delivered, and notices when the main
/// thread does not handle them. Tap thread.
class X11TapDelivery {
public:
    using Clock = std::chrono::steady_clock;

    X11TapDelivery(TapCallback callback, X11TapKeyboard& keyboard, X11InputContext& context)
        : callback_(std::move(callback)), keyboard_(keyboard), context_(context) {}

    TapVerdict key(const X11KeyboardEvent& event);
    /// Text that no single key has typed.
    void text(const std::u16string& text);
    /// Delivers the flags if they differ from the last ones that were delivered. Returns whether the main thread may
    /// end the session for that.
    [[nodiscard]] bool modifiers(std::uint32_t modifiers);
    /// Treats these flags as delivered. The callback gets them with the next key.
    void assumeModifiers(std::uint32_t modifiers) { flags_ = keyboard_.flagsOf(modifiers); }
    /// A key was pressed with the trigger's modifier down. The modifier may not have been delivered yet.
    void noteTriggerModifier(std::uint32_t modifiers);
    /// The delivered flags are no longer valid; the next flags are delivered in any case.
    void forgetModifiers() { flags_ = ~std::uint64_t{0}; }
    void disabled();
    /// The time since which the main thread has not handled a key that was delivered to it; nullopt while it handles
    /// them.
    [[nodiscard]] std::optional<Clock::time_point> unansweredSince() const;

private:
    /// Does nothing while a question is open.
    void askMainThread();
    void postQuestion();

    TapCallback callback_;
    X11TapKeyboard& keyboard_;
    X11InputContext& context_;
    /// Whether the latest question to the main thread was answered; set there. Shared, because the answer may come
    /// after this object was destroyed.
    std::shared_ptr<std::atomic<bool>> hasAnswered_ = std::make_shared<std::atomic<bool>>(true);
    Clock::time_point askedAt_;
    std::uint64_t flags_ = 0;
};

}  // namespace ferrowyn
