#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/switcher_options.h"
#include "core/texts.h"

/// Which keys do what, for people to read. Pure functions; the descriptions are untranslated.
namespace ferrowyn::key_lines {

/// What stands on the key cap, and what the key does.
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

}  // namespace ferrowyn::key_lines
