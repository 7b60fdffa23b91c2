#pragma once

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "platform/event_tap.h"
#include "platform/x11/keyboard/x11_keyboard_layout.h"

namespace ferrowyn {

/// What the tap remembers of one event of the keyboard: small enough to queue.
struct X11KeyboardEvent {
    enum class Kind {
        press,
        release,
        modifiersChanged,
        /// A key went up at the hardware, whether or not its master knew that it was down. Only the code and the time.
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
    /// Typed while the server held its keyboard back for the tap, after the press that began that: only its own
    /// modifiers tell whether it is a trigger.
    bool wasHeldBack = false;
    /// The device whose grab delivered the event: a slave as long as its own grab holds it, else the master.
    std::uint16_t deviceId = 0;
    std::uint32_t keyCode = 0;
    std::uint32_t time = 0;
    /// The latest request of the tap that the server had handled by then. Press and release only.
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

/// What keys type: the layout's group, its levels and locks, and the sequences of dead keys and of the Compose key in
/// the user's locale. Tap thread.
class X11KeyText {
public:
    explicit X11KeyText(xkb_context* context);

    void setLayout(const X11KeyboardLayout& layout);
    /// Forgets a sequence that was begun: a session starts with none, and a key that types nothing ends one.
    void reset();

    /// What the event's key is called as the keyboard was then.
    [[nodiscard]] X11KeyboardLayout::KeySymbols symbols(const X11KeyboardEvent& event);
    /// What this press types, with these flags instead of its own modifiers when given; a step of a sequence.
    [[nodiscard]] std::u16string type(const X11KeyboardEvent& press, std::optional<std::uint64_t> withFlags);

private:
    void setState(const X11KeyboardEvent::Modifiers& modifiers);

    std::unique_ptr<xkb_compose_table, XkbTextUnref> composeTable_;
    std::unique_ptr<xkb_compose_state, XkbTextUnref> compose_;
    std::unique_ptr<xkb_state, XkbTextUnref> state_;
    const X11KeyboardLayout* layout_ = nullptr;
};

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
