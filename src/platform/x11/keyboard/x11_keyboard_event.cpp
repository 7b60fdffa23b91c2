#include "platform/x11/keyboard/x11_keyboard_event.h"

#include <array>
#include <cstdlib>

#include "core/switcher_options.h"
#include "core/text_encoding.h"

namespace ferrowyn {

namespace {

constexpr std::uint64_t allFlags =
    event_flags::shift | event_flags::control | event_flags::option | event_flags::command;

/// The locale that the C library would choose. Read from the environment, because the program may not call setlocale.
const char* composeLocale() {
    for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const value = std::getenv(variable);  // NOLINT(concurrency-mt-unsafe): nothing sets it meanwhile
        if (value != nullptr && *value != '\0') {
            return value;
        }
    }
    return "C";
}

}  // namespace

X11KeyText::X11KeyText(xkb_context* context)
    : composeTable_(xkb_compose_table_new_from_locale(context, composeLocale(), XKB_COMPOSE_COMPILE_NO_FLAGS)) {
    if (composeTable_ == nullptr) {
        // The locale has no sequences; the common ones are used instead.
        composeTable_.reset(xkb_compose_table_new_from_locale(context, "en_US.UTF-8", XKB_COMPOSE_COMPILE_NO_FLAGS));
    }
    if (composeTable_ != nullptr) {
        compose_.reset(xkb_compose_state_new(composeTable_.get(), XKB_COMPOSE_STATE_NO_FLAGS));
    }
}

void X11KeyText::setLayout(const X11KeyboardLayout& layout) {
    layout_ = &layout;
    state_.reset(xkb_state_new(layout.keymap()));
}

void X11KeyText::reset() {
    if (compose_ != nullptr) {
        xkb_compose_state_reset(compose_.get());
    }
}

void X11KeyText::setState(const X11KeyboardEvent::Modifiers& modifiers) {
    xkb_state_update_mask(state_.get(), modifiers.base, modifiers.latched, modifiers.locked, modifiers.baseGroup,
                          modifiers.latchedGroup, modifiers.lockedGroup);
}

X11KeyboardLayout::KeySymbols X11KeyText::symbols(const X11KeyboardEvent& event) {
    if (state_ == nullptr) {
        return {};
    }
    setState(event.modifiers);
    X11KeyboardLayout::KeySymbols symbols;
    symbols.symbol = xkb_state_key_get_one_sym(state_.get(), event.keyCode);
    const auto group = xkb_state_key_get_layout(state_.get(), event.keyCode);
    const xkb_keysym_t* base = nullptr;
    if (xkb_keymap_key_get_syms_by_level(layout_->keymap(), event.keyCode, group, 0, &base) > 0) {
        symbols.base = base[0];
    }
    return symbols;
}

std::u16string X11KeyText::type(const X11KeyboardEvent& press, std::optional<std::uint64_t> withFlags) {
    if (state_ == nullptr) {
        return {};
    }
    auto modifiers = press.modifiers;
    if (withFlags) {
        // Only modifiers that have a flag are replaced. The third level's modifier and the locks stay as they are.
        const auto replaced = layout_->modifiersOf(allFlags);
        modifiers.base = (modifiers.base & ~replaced) | layout_->modifiersOf(*withFlags);
        modifiers.latched &= ~replaced;
        modifiers.locked &= ~replaced;
    }
    setState(modifiers);
    std::array<char, 64> buffer{};
    const auto symbol = xkb_state_key_get_one_sym(state_.get(), press.keyCode);
    if (compose_ != nullptr && xkb_compose_state_feed(compose_.get(), symbol) == XKB_COMPOSE_FEED_ACCEPTED) {
        switch (xkb_compose_state_get_status(compose_.get())) {
            case XKB_COMPOSE_COMPOSING:
            case XKB_COMPOSE_CANCELLED:
                return {};
            case XKB_COMPOSE_COMPOSED:
                xkb_compose_state_get_utf8(compose_.get(), buffer.data(), buffer.size());
                return text::utf16FromUtf8(buffer.data());
            case XKB_COMPOSE_NOTHING:
                break;
        }
    }
    xkb_state_key_get_utf8(state_.get(), press.keyCode, buffer.data(), buffer.size());
    return text::utf16FromUtf8(buffer.data());
}

std::u16string X11TapEvent::text(std::optional<std::uint64_t> withFlags) const {
    if (!typed_) {
        if (keyText_ == nullptr || type_ != Type::keyDown) {
            return {};
        }
        typed_ = keyText_->type(*press_, withFlags);
    }
    return *typed_;
}

}  // namespace ferrowyn
