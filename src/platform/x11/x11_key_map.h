#pragma once

#include <xkbcommon/xkbcommon.h>

#include <cstdint>
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

}  // namespace ferrowyn
