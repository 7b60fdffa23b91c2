#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace ferrowyn {

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

}  // namespace ferrowyn
