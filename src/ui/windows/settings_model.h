#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/switcher_options.h"
#include "core/texts.h"
#include "services/update_checker.h"

namespace ferrowyn {

class AccessibilityAuthorizer;
class FavouritesStore;
class IconProvider;
class LaunchAtLoginService;
class Preferences;

/// The services that the settings window shows and changes. All of them outlive the window.
struct SettingsServices {
    Preferences& preferences;
    AccessibilityAuthorizer& authorizer;
    LaunchAtLoginService& launchAtLogin;
    FavouritesStore& favourites;
    UpdateChecker& updates;
    IconProvider& icons;
};

/// The texts of the settings window, chosen without the toolkit. Pure functions; texts are untranslated.
namespace settings_lines {

/// A line with a symbol before it. The tint says whether all is well.
struct StatusLine {
    enum class Tint { none, good, attention };

    /// Empty for none.
    std::string_view symbol;
    Tint tint = Tint::none;
    Phrase text;

    friend bool operator==(const StatusLine&, const StatusLine&) = default;
};

/// Absent while a check runs.
[[nodiscard]] std::optional<StatusLine> updateStatus(const UpdateChecker::State& state, const UtilityTexts& texts);
/// In place of `updateStatus` where there is no server to ask.
[[nodiscard]] StatusLine noUpdateServer(const UtilityTexts& texts);
[[nodiscard]] StatusLine permissionStatus(AccessibilityStatus status, bool canBecomeTrusted, const UtilityTexts& texts);
[[nodiscard]] StatusLine secureInputStatus(const UtilityTexts& texts);
/// The line refers to the message, which outlives it. The message is translated like any other text.
[[nodiscard]] StatusLine loginItemMessage(std::string_view message);

[[nodiscard]] std::string_view modifierName(SwitcherModifier modifier, const UtilityTexts& texts);
/// The modifier's name followed by " + Tab".
[[nodiscard]] Phrase summonChoice(SwitcherModifier modifier, const UtilityTexts& texts);
/// True for command, which takes keys that the system uses itself.
[[nodiscard]] bool showsReplacementNote(SwitcherModifier modifier);

[[nodiscard]] std::string_view layoutDescription(SwitcherLayout layout, const UtilityTexts& texts);
/// "Show up to 9 rows before scrolling".
[[nodiscard]] Phrase maximumRows(int rows, const UtilityTexts& texts);

[[nodiscard]] std::string_view activeAppFirstNote(bool isOn, const UtilityTexts& texts);
/// Names the keys that pin an application.
[[nodiscard]] Phrase favouritesFirstNote(SwitcherModifier trigger, const TextTable& texts);
[[nodiscard]] Phrase removeHelp(std::string applicationName, const UtilityTexts& texts);

}  // namespace settings_lines

/// The keys and what they do, as texts. Pure functions; the descriptions are untranslated.
namespace key_lines {

/// The text of the key cap, and what the key does.
struct KeyLine {
    std::string keys;
    std::string_view description;

    friend bool operator==(const KeyLine&, const KeyLine&) = default;
};

/// "⌘D", or "Ctrl+D" on a PC keyboard.
[[nodiscard]] std::string commandKeys(SwitcherModifier trigger, std::string_view key, const TextTable& texts);
/// "⌥⇥", or "Alt+Tab".
[[nodiscard]] std::string triggerKeys(SwitcherModifier trigger, const TextTable& texts);

/// The keys of an open switcher, as the settings list them.
[[nodiscard]] std::vector<KeyLine> whileOpen(SwitcherModifier trigger, const TextTable& texts);
/// The few that a new user needs.
[[nodiscard]] std::vector<KeyLine> forSetup(SwitcherModifier trigger, const TextTable& texts);

}  // namespace key_lines

}  // namespace ferrowyn
