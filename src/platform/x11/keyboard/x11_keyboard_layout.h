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

/// A key without an ANSI virtual key code gets its X key code plus this number, so that all codes differ.
inline constexpr std::uint16_t firstUnknownVirtualKeyCode = 128;

/// The ANSI virtual key code of a physical key, independent of the layout. It is found by the XKB name ("TAB", "AD01"),
/// which is the same for all sets of key codes, or by the evdev code when the keymap has no name.
[[nodiscard]] std::uint16_t virtualKeyCode(std::string_view xkbName, xkb_keycode_t keyCode);

/// The virtual key code for a symbol that identifies a key wherever the user has put it: Escape, Return, Tab, the keys
/// that delete and those that move, those on the keypad included. nullopt for other symbols.
[[nodiscard]] std::optional<std::uint16_t> virtualKeyCodeOfSymbol(xkb_keysym_t symbol);
/// Whether keys get this virtual key code by their symbol and not by their position.
[[nodiscard]] bool isFoundBySymbol(std::uint16_t virtualKeyCode);
/// Whether this is a symbol that a keypad key has only while Num Lock is off.
[[nodiscard]] bool isKeypadMovement(xkb_keysym_t symbol);

struct XkbUnref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};

/// The server's keymap at one moment: the keys and the meaning of the modifiers. Read again when the server reports a
/// change of the keymap or of the keyboards. Immutable.
class X11KeyboardLayout {
public:
    /// Null when the server has no usable keymap. Waits for the server.
    [[nodiscard]] static std::unique_ptr<X11KeyboardLayout> read(const X11Connection& connection, xkb_context* context);

    [[nodiscard]] xkb_keymap* keymap() const { return keymap_.get(); }

    /// The symbols of a key at one moment.
    struct KeySymbols {
        /// With the modifiers and the group of that moment.
        xkb_keysym_t symbol = XKB_KEY_NoSymbol;
        /// In the same group without any modifier.
        xkb_keysym_t base = XKB_KEY_NoSymbol;
    };
    /// Letters, digits and similar keys are identified by their position; Escape, the arrows and similar keys by their
    /// symbol.
    [[nodiscard]] std::uint16_t virtualKeyCodeOf(xkb_keycode_t keyCode, const KeySymbols& symbols) const;
    /// For Tab or grave: the keys with its symbol in any group without a modifier, or the physical key when none has
    /// it.
    [[nodiscard]] const std::vector<xkb_keycode_t>& keyCodesOf(std::uint16_t virtualKeyCode) const;
    /// The first of them; nullopt when the keymap has no such key.
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
    /// All combinations of the lock modifiers, the empty one included. A passive grab is needed for each, because it
    /// matches the exact modifiers.
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
