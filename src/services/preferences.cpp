#include "services/preferences.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/user_defaults.h"

namespace ferrowyn {

namespace {

// The keys in the stored file. They must not change, because users' files have them.
constexpr std::string_view modifierKey = "switcher.modifier";
constexpr std::string_view includeMinimizedKey = "switcher.includeMinimized";
constexpr std::string_view includeOtherSpacesKey = "switcher.includeOtherSpaces";
constexpr std::string_view showShortcutHintsKey = "switcher.showShortcutHints";
constexpr std::string_view confirmOnModifierReleaseKey = "switcher.confirmOnModifierRelease";
constexpr std::string_view maximumVisibleRowsKey = "switcher.maximumVisibleRows";
constexpr std::string_view layoutKey = "switcher.layout";
constexpr std::string_view activeAppFirstKey = "switcher.activeAppFirst";
constexpr std::string_view favouritesFirstKey = "switcher.favouritesFirst";
constexpr std::string_view automaticUpdateChecksKey = "updates.automatic";

constexpr std::int64_t defaultMaximumVisibleRows = 9;

/// Registers the defaults before the first setting is read. Called in the member initialisers for that reason.
UserDefaults& withDefaults(UserDefaults& defaults) {
    defaults.registerDefaults({
        {std::string(modifierKey), std::string(rawValue(SwitcherModifier::option))},
        {std::string(includeMinimizedKey), true},
        {std::string(includeOtherSpacesKey), true},
        {std::string(showShortcutHintsKey), true},
        {std::string(confirmOnModifierReleaseKey), true},
        {std::string(maximumVisibleRowsKey), defaultMaximumVisibleRows},
        {std::string(layoutKey), std::string(rawValue(SwitcherLayout::list))},
        {std::string(activeAppFirstKey), true},
        {std::string(favouritesFirstKey), true},
        {std::string(automaticUpdateChecksKey), true},
    });
    return defaults;
}

Preferences::Setting<bool> booleanSetting(UserDefaults& defaults, std::string_view key) {
    return {defaults.boolean(key), [&defaults, key](bool value) { defaults.set(key, value); }};
}

SwitcherModifier readModifier(const UserDefaults& defaults) {
    return switcherModifierFromRawValue(defaults.string(modifierKey).value_or("")).value_or(SwitcherModifier::option);
}

SwitcherLayout readLayout(const UserDefaults& defaults) {
    return switcherLayoutFromRawValue(defaults.string(layoutKey).value_or("")).value_or(SwitcherLayout::list);
}

int readMaximumVisibleRows(const UserDefaults& defaults) {
    return static_cast<int>(std::clamp<std::int64_t>(defaults.integer(maximumVisibleRowsKey),
                                                     Preferences::fewestVisibleRows, Preferences::mostVisibleRows));
}

}  // namespace

Preferences::Preferences(UserDefaults& defaults)
    : defaults_(withDefaults(defaults)),
      modifier(readModifier(defaults_),
               [&defaults](SwitcherModifier value) { defaults.set(modifierKey, std::string(rawValue(value))); }),
      includeMinimized(booleanSetting(defaults_, includeMinimizedKey)),
      includeOtherSpaces(booleanSetting(defaults_, includeOtherSpacesKey)),
      showShortcutHints(booleanSetting(defaults_, showShortcutHintsKey)),
      confirmOnModifierRelease(booleanSetting(defaults_, confirmOnModifierReleaseKey)),
      maximumVisibleRows(
          readMaximumVisibleRows(defaults_),
          [&defaults](int value) { defaults.set(maximumVisibleRowsKey, static_cast<std::int64_t>(value)); }),
      layout(readLayout(defaults_),
             [&defaults](SwitcherLayout value) { defaults.set(layoutKey, std::string(rawValue(value))); }),
      showActiveAppWindowsFirst(booleanSetting(defaults_, activeAppFirstKey)),
      favouritesFirst(booleanSetting(defaults_, favouritesFirstKey)),
      automaticUpdateChecks(booleanSetting(defaults_, automaticUpdateChecksKey)) {}

SessionSettings Preferences::sessionSettings() const {
    return {includeMinimized.published(), includeOtherSpaces.published(), showActiveAppWindowsFirst.published(),
            favouritesFirst.published(), layout.published()};
}

}  // namespace ferrowyn
