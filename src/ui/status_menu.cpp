#include "ui/status_menu.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>
#include <variant>

#include "app/app_services.h"
#include "core/texts.h"
#include "core/window_presentation.h"
#include "services/launch_at_login_service.h"
#include "services/update_checker.h"
#include "ui/health_state.h"

namespace ferrowyn {

namespace {

using Action = MenuRow::Action;

MenuRow item(std::string title, std::string_view symbol, Action action) {
    return {.title = std::move(title), .symbol = std::string(symbol), .action = action};
}

MenuRow withKey(MenuRow row, std::string_view key) {
    row.keyEquivalent = key;
    return row;
}

/// Makes the rows, each from the services as they are now.
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
            auto row = item(say(title(layout)), WindowPresentation::layoutSymbol(layout), Action::selectLayout);
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
        const auto& state = launchAtLogin.state().get();
        auto row = item(say(texts_.launchAtLogin), "power", Action::toggleLaunchAtLogin);
        row.isChecked = std::holds_alternative<LaunchAtLoginService::Enabled>(state) ||
                        std::holds_alternative<LaunchAtLoginService::RequiresApproval>(state);
        row.isEnabled = !std::holds_alternative<LaunchAtLoginService::Unavailable>(state);
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
