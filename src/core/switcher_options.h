#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "core/published.h"
#include "core/utility_texts.h"

namespace ferrowyn {

/// How the rows of the switcher are arranged.
enum class SwitcherLayout { list, grouped, grid };

/// In the order in which they cycle and in which the user picks one.
inline constexpr std::array allSwitcherLayouts{SwitcherLayout::list, SwitcherLayout::grouped, SwitcherLayout::grid};

/// The form in which it is stored. Reading it back compares exactly, case included.
[[nodiscard]] std::string_view rawValue(SwitcherLayout layout);
[[nodiscard]] std::optional<SwitcherLayout> switcherLayoutFromRawValue(std::string_view raw);
/// Untranslated.
[[nodiscard]] std::string_view title(SwitcherLayout layout, const UtilityTexts& texts);
/// Items on one line: 5 in the grid, 1 otherwise.
[[nodiscard]] int columns(SwitcherLayout layout);
/// Lines needed for this many items; 0 for none.
[[nodiscard]] int lineCount(SwitcherLayout layout, int items);
/// The most lines shown for a limit of `maximumRows`; at least 1.
[[nodiscard]] int visibleLineCount(SwitcherLayout layout, int maximumRows);
/// list → grouped → grid → list.
[[nodiscard]] SwitcherLayout nextLayout(SwitcherLayout layout);

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

/// The form in which it is stored. Reading it back compares exactly, case included.
[[nodiscard]] std::string_view rawValue(SwitcherModifier modifier);
[[nodiscard]] std::optional<SwitcherModifier> switcherModifierFromRawValue(std::string_view raw);
/// The event-flag bit that the keyboard layer tests.
[[nodiscard]] std::uint64_t flagMask(SwitcherModifier modifier);
/// "⌥", "⌘" or "⌃".
[[nodiscard]] std::string_view symbol(SwitcherModifier modifier);
/// "Option", "Command" or "Control".
[[nodiscard]] std::string_view name(SwitcherModifier modifier);

/// A page of the settings window.
enum class SettingsPane { general, shortcut, appearance, windows, favourites, about };

/// In the order of the sidebar.
inline constexpr std::array allSettingsPanes{SettingsPane::general, SettingsPane::shortcut,   SettingsPane::appearance,
                                             SettingsPane::windows, SettingsPane::favourites, SettingsPane::about};

/// The name of a pane outside the program, such as "general".
[[nodiscard]] std::string_view rawValue(SettingsPane pane);
[[nodiscard]] std::optional<SettingsPane> settingsPaneFromRawValue(std::string_view raw);
/// Untranslated.
[[nodiscard]] std::string_view title(SettingsPane pane, const UtilityTexts& texts);
/// The name of its symbol.
[[nodiscard]] std::string_view symbol(SettingsPane pane);

/// The settings that decide which rows a session shows and in which order. References to fields of the preferences,
/// which outlive every session.
struct SessionSettings {
    const Published<bool>& includeMinimized;
    const Published<bool>& includeOtherSpaces;
    const Published<bool>& showActiveAppWindowsFirst;
    const Published<bool>& favouritesFirst;
    const Published<SwitcherLayout>& layout;
};

}  // namespace ferrowyn
