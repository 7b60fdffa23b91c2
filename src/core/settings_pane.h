#pragma once

#include <array>
#include <optional>
#include <string_view>

#include "core/window_texts.h"

namespace ferrowyn {

/// A page of the settings window.
enum class SettingsPane { general, shortcut, appearance, windows, favourites, about };

/// In the order of the sidebar.
inline constexpr std::array allSettingsPanes{SettingsPane::general, SettingsPane::shortcut,   SettingsPane::appearance,
                                             SettingsPane::windows, SettingsPane::favourites, SettingsPane::about};

/// "general" and so on: the form in which a pane is named outside the program.
[[nodiscard]] std::string_view rawValue(SettingsPane pane);
[[nodiscard]] std::optional<SettingsPane> settingsPaneFromRawValue(std::string_view raw);
/// Untranslated.
[[nodiscard]] std::string_view title(SettingsPane pane, const WindowTexts& texts);
/// The name of its symbol.
[[nodiscard]] std::string_view symbol(SettingsPane pane);

}  // namespace ferrowyn
