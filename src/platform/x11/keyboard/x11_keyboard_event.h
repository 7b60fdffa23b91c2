#pragma once

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/keyboard_tap.h"
#include "platform/x11/keyboard/x11_keyboard_layout.h"

namespace ferrowyn {

/// One keyboard event with the fields that the tap needs; small, because it is queued.
struct X11KeyboardEvent {
    enum class Kind {
        press,
        release,
        modifiersChanged,
        /// A raw release: a key went up on a slave, also when the master did not know that it was down. Has only the
        /// key code and the time.
        rawRelease,
    };

    /// Real modifiers and groups at the time of the event, before it had any effect.
    struct Modifiers {
        std::uint32_t base = 0;
        std::uint32_t latched = 0;
        std::uint32_t locked = 0;
        std::uint32_t effective = 0;
        std::uint32_t baseGroup = 0;
        std::uint32_t latchedGroup = 0;
        std::uint32_t lockedGroup = 0;
    };

    Kind kind = Kind::press;
    bool isRepeat = false;
    /// Typed while the trigger's passive grab froze the keyboard. Only the event's modifiers decide then whether it is
    /// a trigger.
    bool wasHeldBack = false;
    /// The device whose grab delivered the event: a slave while a grab on it is active, otherwise the master.
    std::uint16_t deviceId = 0;
    std::uint32_t keyCode = 0;
    std::uint32_t time = 0;
    /// The sequence number of the tap's latest request that the server had handled. Press and release only.
    std::uint32_t sequence = 0;
    std::uint32_t rootX = 0;
    std::uint32_t rootY = 0;
    /// For `modifiersChanged`, after the change.
    Modifiers modifiers;
};

struct XkbTextUnref {
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
    void operator()(xkb_compose_table* table) const { xkb_compose_table_unref(table); }
    void operator()(xkb_compose_state* state) const { xkb_compose_state_unref(state); }
};

/// Computes the text of keys from the layout's groups, levels and locks, and from the sequences of dead keys and the
/// Compose key in the user's locale. Tap thread.
class X11KeyText {
public:
    explicit X11KeyText(xkb_context* context);

    void setLayout(const X11KeyboardLayout& layout);
    /// Discards an unfinished sequence. Called at the start of a session and for a key that types nothing.
    void reset();

    /// The symbols of the event's key with the event's modifiers and group.
    [[nodiscard]] X11KeyboardLayout::KeySymbols symbols(const X11KeyboardEvent& event);
    /// The text of this press, with `withFlags` in place of the event's modifiers if given. Advances a sequence.
    [[nodiscard]] std::u16string type(const X11KeyboardEvent& press, std::optional<std::uint64_t> withFlags);

private:
    void setState(const X11KeyboardEvent::Modifiers& modifiers);

    std::unique_ptr<xkb_compose_table, XkbTextUnref> composeTable_;
    std::unique_ptr<xkb_compose_state, XkbTextUnref> compose_;
    std::unique_ptr<xkb_state, XkbTextUnref> state_;
    const X11KeyboardLayout* layout_ = nullptr;
};

/// A tap event made from an event of the server. Tap thread.
class X11TapEvent final : public TapEvent {
public:
    /// A change of the flags, or a notice that has none.
    X11TapEvent(Type type, std::uint64_t flags) : type_(type), flags_(flags) {}
    /// A key. `text` and `press` outlive the event.
    X11TapEvent(Type type, std::uint64_t flags, std::uint16_t keyCode, X11KeyText& text, const X11KeyboardEvent& press)
        : type_(type), flags_(flags), keyCode_(keyCode), keyText_(&text), press_(&press) {}

    /// Text that does not come from a key, such as that of an input method.
    explicit X11TapEvent(std::u16string text)
        : type_(Type::keyDown), keyCode_(firstUnknownVirtualKeyCode), typed_(std::move(text)) {}

    [[nodiscard]] Type type() const override { return type_; }
    [[nodiscard]] std::uint64_t flags() const override { return flags_; }
    [[nodiscard]] std::uint16_t keyCode() const override { return keyCode_; }
    [[nodiscard]] std::u16string text(std::optional<std::uint64_t> withFlags) const override;

    /// Whether `text` was called. If not, the key ends a sequence of dead keys.
    [[nodiscard]] bool wasTyped() const { return typed_.has_value(); }

private:
    Type type_;
    std::uint64_t flags_ = 0;
    std::uint16_t keyCode_ = 0;
    X11KeyText* keyText_ = nullptr;
    const X11KeyboardEvent* press_ = nullptr;
    /// The text of the first call. A press must advance a sequence of dead keys only once, however often it is asked.
    mutable std::optional<std::u16string> typed_;
};

}  // namespace ferrowyn
