#pragma once

#include <array>

#include "core/texts.h"
#include "platform/status_item.h"

namespace ferrowyn::test {

/// The five ways in which the program can be doing, as its menu shows them.
enum class Health {
    ready,
    accessRequired,
    trustRevoked,
    repeatedTimeouts,
    secureInput,
    triggerAnsweredElsewhere,
    activationsUnconfirmed
};

inline constexpr std::array allHealths{
    Health::ready,       Health::accessRequired,           Health::trustRevoked,          Health::repeatedTimeouts,
    Health::secureInput, Health::triggerAnsweredElsewhere, Health::activationsUnconfirmed};

[[nodiscard]] const char* nameOf(Health health);
/// A whole menu, with an update to install.
[[nodiscard]] StatusMenu statusMenu(Health health, const StatusItemTexts& texts = macStatusItemTexts());
/// Where the row with this title is; -1 for none.
[[nodiscard]] int rowTitled(const StatusMenu& menu, const std::string& title);

}  // namespace ferrowyn::test
