#include "tests/ui/status_menu_model.h"

#include <algorithm>
#include <string>
#include <utility>

namespace ferrowyn::test {

namespace {

using Action = MenuRow::Action;

MenuRow item(std::string title, std::string symbol, Action action) {
    MenuRow row;
    row.title = std::move(title);
    row.symbol = std::move(symbol);
    row.action = action;
    row.isEnabled = action != Action::none;
    return row;
}

MenuRow separator() {
    MenuRow row;
    row.kind = MenuRow::Kind::separator;
    return row;
}

const StatusItemTexts::Health& textsOf(Health health, const StatusItemTexts& texts) {
    switch (health) {
        case Health::ready:
            break;
        case Health::accessRequired:
            return texts.accessRequired;
        case Health::trustRevoked:
            return texts.trustRevoked;
        case Health::repeatedTimeouts:
            return texts.repeatedTimeouts;
        case Health::secureInput:
            return texts.secureInput;
        case Health::triggerAnsweredElsewhere:
            return texts.triggerAnsweredElsewhere;
        case Health::activationsUnconfirmed:
            return texts.activationsUnconfirmed;
    }
    return texts.ready;
}

MenuRow header(Health health, const StatusItemTexts& texts) {
    MenuRow row;
    row.kind = MenuRow::Kind::header;
    row.header = {"Ferrowyn", std::string(textsOf(health, texts).subtitle),
                  health == Health::ready ? MenuTint::secondaryLabel : MenuTint::orange};
    row.action = Action::openSettings;
    return row;
}

MenuRow repair(Health health, const StatusItemTexts& texts) {
    const std::string title(textsOf(health, texts).repair);
    MenuRow row;
    if (health == Health::accessRequired) {
        row = item(title, "lock.shield", Action::openOnboarding);
    } else if (health == Health::secureInput) {
        row = item(title, "keyboard.badge.ellipsis", Action::none);
    } else if (health == Health::triggerAnsweredElsewhere) {
        row = item(title, "keyboard", Action::openSettings);
    } else if (health == Health::activationsUnconfirmed) {
        row = item(title, "exclamationmark.triangle", Action::none);
    } else {
        row = item(title, "arrow.clockwise", Action::retryInput);
    }
    row.symbolTint = MenuTint::orange;
    return row;
}

MenuRow layout(std::string title, std::string symbol, std::string value) {
    MenuRow row = item(std::move(title), std::move(symbol), Action::selectLayout);
    row.isChecked = value == "list";
    row.representedValue = std::move(value);
    return row;
}

void appendSwitcher(StatusMenu& menu, Health health) {
    MenuRow open = item("Open Switcher", "rectangle.stack", Action::showSwitcher);
    open.titleSuffix = "Alt+Tab";
    open.isEnabled = health != Health::accessRequired;
    menu.push_back(open);
    menu.push_back(item("9 windows tracked", "macwindow", Action::none));
    menu.push_back(separator());
    MenuRow title;
    title.kind = MenuRow::Kind::sectionTitle;
    title.title = "LAYOUT";
    title.isEnabled = false;
    menu.push_back(title);
    menu.push_back(layout("List", "list.bullet", "list"));
    menu.push_back(layout("Grouped", "list.bullet.indent", "grouped"));
    menu.push_back(layout("Grid", "square.grid.3x2", "grid"));
    menu.push_back(separator());
}

void appendProgram(StatusMenu& menu) {
    MenuRow login = item("Launch at Login", "power", Action::toggleLaunchAtLogin);
    login.isChecked = true;
    login.tooltip = "Turned off in the desktop's own settings.";
    menu.push_back(login);
    MenuRow settings = item("Settings…", "gearshape", Action::openSettings);
    settings.keyEquivalent = ",";
    menu.push_back(settings);
    menu.push_back(item("Setup Guide…", "questionmark.circle", Action::openOnboarding));
    MenuRow update = item("Update to 1.4.0…", "arrow.down.circle", Action::downloadUpdate);
    update.symbolTint = MenuTint::accent;
    menu.push_back(update);
    menu.push_back(item("About Ferrowyn", "info.circle", Action::openAbout));
    menu.push_back(separator());
    MenuRow quit = item("Quit Ferrowyn", "xmark.circle", Action::quit);
    quit.keyEquivalent = "q";
    menu.push_back(quit);
}

}  // namespace

const char* nameOf(Health health) {
    switch (health) {
        case Health::ready:
            return "ready";
        case Health::accessRequired:
            return "access-required";
        case Health::trustRevoked:
            return "trust-revoked";
        case Health::repeatedTimeouts:
            return "repeated-timeouts";
        case Health::secureInput:
            return "secure-input";
        case Health::triggerAnsweredElsewhere:
            return "trigger-answered-elsewhere";
        case Health::activationsUnconfirmed:
            return "activations-unconfirmed";
    }
    return "";
}

StatusMenu statusMenu(Health health, const StatusItemTexts& texts) {
    StatusMenu menu{header(health, texts), separator()};
    if (health != Health::ready) {
        menu.push_back(repair(health, texts));
        menu.push_back(separator());
    }
    appendSwitcher(menu, health);
    appendProgram(menu);
    return menu;
}

int rowTitled(const StatusMenu& menu, const std::string& title) {
    const auto found = std::find_if(menu.begin(), menu.end(), [&](const MenuRow& row) { return row.title == title; });
    return found == menu.end() ? -1 : static_cast<int>(found - menu.begin());
}

}  // namespace ferrowyn::test
