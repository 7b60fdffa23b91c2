#pragma once

#include <utility>

#include "platform/event_tap.h"
#include "platform/x11/x11_key_map.h"
#include "platform/x11/x11_keyboard_event.h"

namespace ferrowyn {

class X11KeyText;

/// A tap event made from what the server sent. Tap thread.
class X11TapEvent final : public TapEvent {
public:
    /// A change of the flags, or a notice that has none.
    X11TapEvent(Type type, std::uint64_t flags) : type_(type), flags_(flags) {}
    /// A key. `text` and `press` outlive the event.
    X11TapEvent(Type type, std::uint64_t flags, std::uint16_t keyCode, X11KeyText& text, const X11KeyboardEvent& press)
        : type_(type), flags_(flags), keyCode_(keyCode), keyText_(&text), press_(&press) {}

    /// Text without a key of its own.
    explicit X11TapEvent(std::u16string text)
        : type_(Type::keyDown), keyCode_(firstUnknownVirtualKeyCode), typed_(std::move(text)) {}

    [[nodiscard]] Type type() const override { return type_; }
    [[nodiscard]] std::uint64_t flags() const override { return flags_; }
    [[nodiscard]] std::uint16_t keyCode() const override { return keyCode_; }
    [[nodiscard]] std::u16string text(std::optional<std::uint64_t> withFlags) const override;

    /// Whether somebody asked what the key types: if not, it ends a sequence of dead keys.
    [[nodiscard]] bool wasTyped() const { return typed_.has_value(); }

private:
    Type type_;
    std::uint64_t flags_ = 0;
    std::uint16_t keyCode_ = 0;
    X11KeyText* keyText_ = nullptr;
    const X11KeyboardEvent* press_ = nullptr;
    /// Asking is a step of a sequence of dead keys, and one press is one step however often it is asked about.
    mutable std::optional<std::u16string> typed_;
};

}  // namespace ferrowyn
