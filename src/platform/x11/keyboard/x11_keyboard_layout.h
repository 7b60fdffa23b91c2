#pragma once

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "core/switcher_options.h"

namespace ferrowyn {

class X11Connection;

/// Keys without an ANSI virtual key code get their X key code on top of this, so that they stay apart and never
/// collide with one that has.
inline constexpr std::uint16_t firstUnknownVirtualKeyCode = 128;

namespace virtual_key {
inline constexpr std::uint16_t tab = 48, grave = 50;
}  // namespace virtual_key

/// The ANSI virtual key code of a physical key, whatever the layout: by its XKB name ("TAB", "AD01"), which holds for
/// every family of key codes; by its evdev code where the keymap names nothing.
[[nodiscard]] std::uint16_t virtualKeyCode(std::string_view xkbName, xkb_keycode_t keyCode);

/// Of the keys that a user may put elsewhere and that are what their symbol says: Escape, Return, Tab, the keys that
/// delete and those that move, with their twins on the keypad. Nothing for any other symbol.
[[nodiscard]] std::optional<std::uint16_t> virtualKeyCodeOfSymbol(xkb_keysym_t symbol);
/// Whether a key has this virtual key code by its symbol, never by its place.
[[nodiscard]] bool isFoundBySymbol(std::uint16_t virtualKeyCode);
/// Whether a key of the keypad has this symbol while Num Lock is off, and another one while it is on.
[[nodiscard]] bool isKeypadMovement(xkb_keysym_t symbol);

struct XkbUnref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};

/// The server's keymap as it was when this was read: which key is which, and which modifier means what. A snapshot;
/// read again when the server says that the map or the keyboard changed.
class X11KeyboardLayout {
public:
    /// Null when the server has no usable keymap. Waits for the server.
    [[nodiscard]] static std::unique_ptr<X11KeyboardLayout> read(const X11Connection& connection, xkb_context* context);

    [[nodiscard]] xkb_keymap* keymap() const { return keymap_.get(); }

    /// What a key is called at one moment.
    struct KeySymbols {
        /// With the modifiers and the group of that moment.
        xkb_keysym_t symbol = XKB_KEY_NoSymbol;
        /// In the same group without any modifier.
        xkb_keysym_t base = XKB_KEY_NoSymbol;
    };
    /// Letters, digits and their like are physical keys, wherever the layout puts their symbols; Escape, the arrows and
    /// their like are what their symbol says, wherever the user has put it.
    [[nodiscard]] std::uint16_t virtualKeyCodeOf(xkb_keycode_t keyCode, const KeySymbols& symbols) const;
    /// Of Tab or grave: the keys that have its symbol without a modifier in any group; the physical one where none has.
    [[nodiscard]] const std::vector<xkb_keycode_t>& keyCodesOf(std::uint16_t virtualKeyCode) const;
    /// The first of them; nothing when no key of the map is one.
    [[nodiscard]] std::optional<xkb_keycode_t> keyCodeOf(std::uint16_t virtualKeyCode) const;
    /// Whether the key is a modifier or a lock, which changes flags and types nothing.
    [[nodiscard]] bool isModifierKey(xkb_keycode_t keyCode) const;

    /// The real modifiers that the key sets while it is down.
    [[nodiscard]] std::uint32_t modifiersOfKey(xkb_keycode_t keyCode) const;
    /// Whether the key is Shift, even where it does not set the modifier: after Alt it may switch the layout instead.
    [[nodiscard]] bool isShiftKey(xkb_keycode_t keyCode) const;

    /// Shift, Control, Option and Command of these real modifiers; locks and groups have no flag.
    [[nodiscard]] std::uint64_t flagsOf(std::uint32_t realModifiers) const;
    /// The real modifiers of these flags.
    [[nodiscard]] std::uint32_t modifiersOf(std::uint64_t flags) const;
    /// 0 when no key of the map sets this modifier.
    [[nodiscard]] std::uint32_t maskOf(SwitcherModifier modifier) const { return modifiersOf(flagMask(modifier)); }
    /// Every combination of the lock modifiers, none of them included: they are part of what a passive grab matches.
    [[nodiscard]] std::vector<std::uint32_t> lockCombinations() const;

private:
    X11KeyboardLayout() = default;
    void readModifiers(const X11Connection& connection);
    void findTriggerKeys();
    [[nodiscard]] std::vector<xkb_keycode_t> keysWithSymbol(std::uint16_t virtualKeyCode) const;
    [[nodiscard]] std::uint16_t physicalKeyCodeOf(xkb_keycode_t keyCode) const;

    std::unique_ptr<xkb_keymap, XkbUnref> keymap_;
    /// By key code.
    std::vector<bool> modifierKeys_;
    std::vector<std::uint32_t> modifierMap_;
    std::vector<xkb_keycode_t> tabKeys_;
    std::vector<xkb_keycode_t> graveKeys_;
    std::uint32_t alt_ = 0;
    std::uint32_t super_ = 0;
    std::uint32_t locks_ = 0;
};

}  // namespace ferrowyn
