#include "ui/status_menu.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>
#include <variant>

#include "app/app_services.h"
#include "core/text_table.h"
#include "services/launch_at_login_service.h"
#include "services/update_checker.h"
#include "ui/health_state.h"

namespace ferrowyn {

namespace {

using Action = MenuRow::Action;

const MenuRow separator{.kind = MenuRow::Kind::separator};

MenuRow item(std::string title, std::string_view symbol, Action action) {
    return {.title = std::move(title), .symbol = std::string(symbol), .action = action};
}

MenuRow header(const HealthAppearance& health, bool isReady) {
    return {.kind = MenuRow::Kind::header,
            .header = {.title = "Ferrowyn",
                       .subtitle = std::string(health.subtitle),
                       .subtitleTint = isReady ? MenuTint::secondaryLabel : MenuTint::orange},
            .action = Action::openSettings};
}

MenuRow repairRow(const HealthAppearance& health) {
    auto row = item(std::string(health.repairTitle), health.repairSymbol, health.repairAction);
    row.symbolTint = MenuTint::orange;
    row.isEnabled = health.repairAction != Action::none;
    return row;
}

MenuRow openSwitcherRow(AppServices& services, const TextTable& texts) {
    auto row = item("Open Switcher", "rectangle.stack", Action::showSwitcher);
    row.titleSuffix = fmt::format("{}{}{}", texts.modifierKey(services.preferences().modifier.get()),
                                  texts.keySeparator, texts.tabKey);
    row.isEnabled = services.authorizer().status().get() == AccessibilityStatus::trusted;
    return row;
}

MenuRow windowCountRow(AppServices& services) {
    const auto count = services.windowIndex().windows().get().size();
    auto row =
        item(count == 1 ? "1 window tracked" : fmt::format("{} windows tracked", count), "macwindow", Action::none);
    row.isEnabled = false;
    return row;
}

std::string_view symbolOf(SwitcherLayout layout) {
    switch (layout) {
        case SwitcherLayout::list:
            return "list.bullet";
        case SwitcherLayout::grouped:
            return "list.bullet.indent";
        case SwitcherLayout::grid:
            return "square.grid.3x2";
    }
    return {};
}

void addLayouts(StatusMenu& menu, SwitcherLayout chosen) {
    menu.push_back({.kind = MenuRow::Kind::sectionTitle, .title = "LAYOUT", .isEnabled = false});
    for (const auto layout : allSwitcherLayouts) {
        auto row = item(std::string(title(layout)), symbolOf(layout), Action::selectLayout);
        row.representedValue = rawValue(layout);
        row.isChecked = layout == chosen;
        menu.push_back(std::move(row));
    }
}

MenuRow launchAtLoginRow(const LaunchAtLoginService& launchAtLogin) {
    const auto& state = launchAtLogin.state().get();
    auto row = item("Launch at Login", "power", Action::toggleLaunchAtLogin);
    row.isChecked = std::holds_alternative<LaunchAtLoginService::Enabled>(state) ||
                    std::holds_alternative<LaunchAtLoginService::RequiresApproval>(state);
    row.isEnabled = !std::holds_alternative<LaunchAtLoginService::Unavailable>(state);
    row.tooltip = launchAtLogin.explanatoryMessage().value_or("");
    return row;
}

MenuRow withKey(MenuRow row, std::string_view key) {
    row.keyEquivalent = key;
    return row;
}

void addUpdate(StatusMenu& menu, const UpdateChecker& updates) {
    const auto* available = std::get_if<UpdateChecker::UpdateAvailable>(&updates.state().get());
    if (available == nullptr) {
        return;
    }
    auto row = item(fmt::format("Update to {}…", available->release.version.original()), "arrow.down.circle",
                    Action::downloadUpdate);
    row.symbolTint = MenuTint::accent;
    menu.push_back(std::move(row));
}

}  // namespace

StatusMenu makeStatusMenu(AppServices& services, const TextTable& texts, const std::string& applicationName) {
    const auto state = healthState(services);
    const auto health = appearance(state, texts);
    const bool isReady = state == HealthState::ready;
    StatusMenu menu{header(health, isReady), separator};
    if (!isReady) {
        menu.push_back(repairRow(health));
        menu.push_back(separator);
    }
    menu.push_back(openSwitcherRow(services, texts));
    menu.push_back(windowCountRow(services));
    menu.push_back(separator);
    addLayouts(menu, services.preferences().layout.get());
    menu.push_back(separator);
    menu.push_back(launchAtLoginRow(services.launchAtLogin()));
    menu.push_back(withKey(item("Settings…", "gearshape", Action::openSettings), ","));
    menu.push_back(item("Setup Guide…", "questionmark.circle", Action::openOnboarding));
    addUpdate(menu, services.updates());
    menu.push_back(item("About " + applicationName, "info.circle", Action::openAbout));
    menu.push_back(separator);
    menu.push_back(withKey(item("Quit Ferrowyn", "xmark.circle", Action::quit), "q"));
    return menu;
}

}  // namespace ferrowyn
