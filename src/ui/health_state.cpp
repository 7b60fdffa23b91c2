#include "ui/health_state.h"

#include "app/app_services.h"

namespace ferrowyn {

namespace {

constexpr std::string_view warning = "exclamationmark.triangle";
constexpr std::string_view pausedKeyboard = "keyboard.badge.ellipsis";

HealthAppearance failure(const StatusItemTexts::Health& texts) {
    return {.buttonSymbol = warning,
            .texts = texts,
            .repairSymbol = "arrow.clockwise",
            .repairAction = MenuRow::Action::retryInput};
}

}  // namespace

HealthState healthState(AppServices& services) {
    if (services.authorizer().status().get() == AccessibilityStatus::notTrusted) {
        return services.authorizer().canBecomeTrusted() ? HealthState::accessRequired : HealthState::serverUnusable;
    }
    if (const auto failure = services.inputFailure().get()) {
        return *failure == HotKeyMonitor::Failure::trustRevoked ? HealthState::trustRevoked
                                                                : HealthState::repeatedTimeouts;
    }
    if (services.authorizer().isSecureInputActive().get()) {
        return HealthState::secureInput;
    }
    const auto problem = services.switchingHealth().problem().get();
    if (!problem) {
        return HealthState::ready;
    }
    return *problem == SwitchingHealth::Problem::triggerAnsweredElsewhere ? HealthState::triggerAnsweredElsewhere
                                                                          : HealthState::activationsUnconfirmed;
}

HealthAppearance appearance(HealthState state, const StatusItemTexts& texts) {
    switch (state) {
        case HealthState::accessRequired:
            return {.buttonSymbol = warning,
                    .texts = texts.accessRequired,
                    .repairSymbol = "lock.shield",
                    .repairAction = MenuRow::Action::openOnboarding};
        case HealthState::serverUnusable:
            return {.buttonSymbol = warning,
                    .texts = texts.serverUnusable,
                    .repairSymbol = "questionmark.circle",
                    .repairAction = MenuRow::Action::openOnboarding};
        case HealthState::trustRevoked:
            return failure(texts.trustRevoked);
        case HealthState::repeatedTimeouts:
            return failure(texts.repeatedTimeouts);
        case HealthState::secureInput:
            return {.buttonSymbol = pausedKeyboard, .texts = texts.secureInput, .repairSymbol = pausedKeyboard};
        case HealthState::triggerAnsweredElsewhere:
            return {.buttonSymbol = warning,
                    .texts = texts.triggerAnsweredElsewhere,
                    .repairSymbol = "keyboard",
                    .repairAction = MenuRow::Action::openSettings};
        case HealthState::activationsUnconfirmed:
            return {.buttonSymbol = warning, .texts = texts.activationsUnconfirmed, .repairSymbol = warning};
        case HealthState::ready:
            break;
    }
    return {.buttonSymbol = "macwindow.on.rectangle", .texts = texts.ready};
}

}  // namespace ferrowyn
