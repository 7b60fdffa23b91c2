#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/texts.h"
#include "platform/status_item.h"

namespace ferrowyn {

class AppServices;

/// Whether the keyboard shortcut works, and if not, why. Computed from the services when it is shown; it is not stored.
enum class HealthState {
    ready,
    accessRequired,
    serverUnusable,
    trustRevoked,
    repeatedTimeouts,
    secureInput,
    triggerAnsweredElsewhere,
    activationsUnconfirmed
};

/// The first of these that applies: missing trust, which explains every other failure; a failed shortcut, which stays
/// failed when secure input ends; secure input; what was noticed at earlier switches.
[[nodiscard]] HealthState healthState(AppServices& services);

/// How a state shows in the status item.
struct HealthAppearance {
    std::string_view buttonSymbol;
    StatusItemTexts::Health texts;
    /// For the row that repairs the state, or that says what the program waits for.
    std::string_view repairSymbol;
    MenuRow::Action repairAction = MenuRow::Action::none;
};

[[nodiscard]] HealthAppearance appearance(HealthState state, const StatusItemTexts& texts);

/// Translates a text into the user's language.
using Translator = std::function<std::string(const Phrase&)>;

/// The whole menu of the status item in the current state.
[[nodiscard]] StatusMenu makeStatusMenu(AppServices& services, const TextTable& texts,
                                        const std::string& applicationName, const Translator& translate);

}  // namespace ferrowyn
