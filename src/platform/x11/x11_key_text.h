#pragma once

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/x11/x11_keyboard_event.h"
#include "platform/x11/x11_keyboard_layout.h"

namespace ferrowyn {

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

}  // namespace ferrowyn
