#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/texts.h"
#include "platform/status_item.h"

namespace ferrowyn {

class AppServices;

/// How the keyboard shortcut is doing. Derived from the services whenever it is shown, and kept nowhere.
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

/// Missing trust explains every other failure, and a shortcut that failed will not return when secure input ends. What
/// was seen of earlier switches counts only when nothing is known to be in the way now.
[[nodiscard]] HealthState healthState(AppServices& services);

/// How a state shows in the status item.
struct HealthAppearance {
    std::string_view buttonSymbol;
    StatusItemTexts::Health texts;
    /// Of the row that repairs it, or says what is being waited for.
    std::string_view repairSymbol;
    MenuRow::Action repairAction = MenuRow::Action::none;
};

[[nodiscard]] HealthAppearance appearance(HealthState state, const StatusItemTexts& texts);

/// Puts a text into the language of the user.
using Translator = std::function<std::string(const Phrase&)>;

/// The whole menu of the status item, as things stand at this moment.
[[nodiscard]] StatusMenu makeStatusMenu(AppServices& services, const TextTable& texts,
                                        const std::string& applicationName, const Translator& translate);

}  // namespace ferrowyn
