#include "ui/menu/status_menu.h"

#include <fmt/format.h>

#include <utility>
#include <variant>

#include "app/app_services.h"
#include "core/window_presentation.h"
#include "services/launch_at_login_service.h"
#include "services/update_checker.h"

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

namespace {

using Action = MenuRow::Action;

MenuRow item(std::string title, std::string_view symbol, Action action) {
    return {.title = std::move(title), .symbol = std::string(symbol), .action = action};
}

MenuRow withKey(MenuRow row, std::string_view key) {
    row.keyEquivalent = key;
    return row;
}

/// Makes the rows from the current state of the services.
class MenuMaker {
public:
    MenuMaker(AppServices& services, const TextTable& table, const Translator& translate)
        : services_(services), table_(table), texts_(table.statusItem), translate_(translate) {}

    void addHeader(const HealthAppearance& health, bool isReady) {
        menu.push_back({.kind = MenuRow::Kind::header,
                        .header = {.title = say(texts_.programName),
                                   .subtitle = say(health.texts.subtitle),
                                   .subtitleTint = isReady ? MenuTint::secondaryLabel : MenuTint::orange},
                        .action = Action::openSettings});
        addSeparator();
        if (!isReady) {
            auto row = item(say(health.texts.repair), health.repairSymbol, health.repairAction);
            row.symbolTint = MenuTint::orange;
            row.isEnabled = health.repairAction != Action::none;
            menu.push_back(std::move(row));
            addSeparator();
        }
    }

    void addSwitcher() {
        auto open = item(say(texts_.openSwitcher), "rectangle.stack", Action::showSwitcher);
        open.titleSuffix = fmt::format("{}{}{}", table_.modifierKey(services_.preferences().modifier.get()),
                                       table_.keySeparator, table_.tabKey);
        open.isEnabled = services_.authorizer().status().get() == AccessibilityStatus::trusted;
        menu.push_back(std::move(open));

        const auto count = services_.windowIndex().windows().get().size();
        auto windows = item(count == 1 ? say(texts_.oneWindow) : say(texts_.manyWindows, std::to_string(count)),
                            "macwindow", Action::none);
        windows.isEnabled = false;
        menu.push_back(std::move(windows));
        addSeparator();
    }

    void addLayouts() {
        menu.push_back({.kind = MenuRow::Kind::sectionTitle, .title = say(texts_.layoutSection), .isEnabled = false});
        for (const auto layout : allSwitcherLayouts) {
            auto row = item(say(title(layout, table_.utility)), WindowPresentation::layoutSymbol(layout),
                            Action::selectLayout);
            row.representedValue = rawValue(layout);
            row.isChecked = layout == services_.preferences().layout.get();
            menu.push_back(std::move(row));
        }
        addSeparator();
    }

    void addProgram(const std::string& applicationName) {
        addLaunchAtLogin();
        menu.push_back(withKey(item(say(texts_.settings), "gearshape", Action::openSettings), ","));
        menu.push_back(item(say(texts_.setupGuide), "questionmark.circle", Action::openOnboarding));
        addUpdate();
        menu.push_back(item(say(texts_.about, applicationName), "info.circle", Action::openAbout));
        addSeparator();
        menu.push_back(withKey(item(say(texts_.quit), "xmark.circle", Action::quit), "q"));
    }

    StatusMenu menu;

private:
    [[nodiscard]] std::string say(std::string_view text) const { return translate_({text, {}}); }
    [[nodiscard]] std::string say(std::string_view text, std::string argument) const {
        return translate_({text, {std::move(argument)}});
    }

    void addSeparator() { menu.push_back({.kind = MenuRow::Kind::separator}); }

    void addLaunchAtLogin() {
        const auto& launchAtLogin = services_.launchAtLogin();
        auto row = item(say(texts_.launchAtLogin), "power", Action::toggleLaunchAtLogin);
        row.isChecked = launchAtLogin.startsAtLogin();
        row.isEnabled = !std::holds_alternative<LaunchAtLoginService::Unavailable>(launchAtLogin.state().get());
        if (const auto explanation = launchAtLogin.explanatoryMessage()) {
            row.tooltip = say(*explanation);
        }
        menu.push_back(std::move(row));
    }

    void addUpdate() {
        const auto* available = std::get_if<UpdateChecker::UpdateAvailable>(&services_.updates().state().get());
        if (available == nullptr) {
            return;
        }
        auto row = item(say(texts_.update, available->release.version.original()), "arrow.down.circle",
                        Action::downloadUpdate);
        row.symbolTint = MenuTint::accent;
        if (!services_.updates().hasDownloadPage()) {
            row.isEnabled = false;
            row.tooltip = say(texts_.noDownloadPage);
        }
        menu.push_back(std::move(row));
    }

    AppServices& services_;
    const TextTable& table_;
    const StatusItemTexts& texts_;
    const Translator& translate_;
};

}  // namespace

StatusMenu makeStatusMenu(AppServices& services, const TextTable& texts, const std::string& applicationName,
                          const Translator& translate) {
    const auto state = healthState(services);
    MenuMaker maker(services, texts, translate);
    maker.addHeader(appearance(state, texts.statusItem), state == HealthState::ready);
    maker.addSwitcher();
    maker.addLayouts();
    maker.addProgram(applicationName);
    return std::move(maker.menu);
}

}  // namespace ferrowyn
