#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace ferrowyn {

/// Event-flag bits, as key events carry them on every desktop.
namespace event_flags {
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
}  // namespace event_flags

/// The modifier that, held with Tab, opens the switcher.
enum class SwitcherModifier { option, command, control };

/// In the order in which the user picks one.
inline constexpr std::array allSwitcherModifiers{SwitcherModifier::option, SwitcherModifier::command,
                                                 SwitcherModifier::control};

/// The stored form; compared exactly when it is read back.
[[nodiscard]] std::string_view rawValue(SwitcherModifier modifier);
[[nodiscard]] std::optional<SwitcherModifier> switcherModifierFromRawValue(std::string_view raw);
/// The event-flag bit that the keyboard layer tests.
[[nodiscard]] std::uint64_t flagMask(SwitcherModifier modifier);
/// "⌥", "⌘" or "⌃".
[[nodiscard]] std::string_view symbol(SwitcherModifier modifier);
/// "Option", "Command" or "Control".
[[nodiscard]] std::string_view name(SwitcherModifier modifier);

}  // namespace ferrowyn
