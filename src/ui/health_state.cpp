#include "ui/health_state.h"

#include "app/app_services.h"

namespace ferrowyn {

namespace {

constexpr std::string_view warning = "exclamationmark.triangle";
constexpr std::string_view pausedKeyboard = "keyboard.badge.ellipsis";

HealthAppearance failure(std::string_view tooltip, std::string_view subtitle) {
    return {.buttonSymbol = warning,
            .buttonTooltip = tooltip,
            .subtitle = subtitle,
            .repairTitle = "Re-enable Shortcut",
            .repairSymbol = "arrow.clockwise",
            .repairAction = MenuRow::Action::retryInput};
}

}  // namespace

HealthState healthState(AppServices& services) {
    if (services.authorizer().status().get() == AccessibilityStatus::notTrusted) {
        return HealthState::accessRequired;
    }
    if (const auto failure = services.inputFailure().get()) {
        return *failure == HotKeyMonitor::Failure::trustRevoked ? HealthState::trustRevoked
                                                                : HealthState::repeatedTimeouts;
    }
    return services.authorizer().isSecureInputActive().get() ? HealthState::secureInput : HealthState::ready;
}

HealthAppearance appearance(HealthState state, const TextTable& texts) {
    switch (state) {
        case HealthState::accessRequired:
            return {.buttonSymbol = warning,
                    .buttonTooltip = texts.accessRequiredTooltip,
                    .subtitle = texts.accessRequiredSubtitle,
                    .repairTitle = texts.grantAccessTitle,
                    .repairSymbol = "lock.shield",
                    .repairAction = MenuRow::Action::openOnboarding};
        case HealthState::trustRevoked:
            return failure(texts.trustRevokedTooltip, texts.trustRevokedSubtitle);
        case HealthState::repeatedTimeouts:
            return failure("Ferrowyn — shortcut disabled by the system", "Shortcut disabled by the system");
        case HealthState::secureInput:
            return {.buttonSymbol = pausedKeyboard,
                    .buttonTooltip = "Ferrowyn — secure input is active, shortcut paused",
                    .subtitle = "Secure input active — shortcut paused",
                    .repairTitle = "Waiting for the other app to release it",
                    .repairSymbol = pausedKeyboard};
        case HealthState::ready:
            break;
    }
    return {.buttonSymbol = "macwindow.on.rectangle", .buttonTooltip = "Ferrowyn", .subtitle = "Ready"};
}

}  // namespace ferrowyn
