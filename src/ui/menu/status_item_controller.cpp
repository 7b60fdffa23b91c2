#include "ui/menu/status_item_controller.h"

#include <utility>

#include "app/app_services.h"
#include "core/texts.h"
#include "input/switcher_controller.h"
#include "platform/application.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "services/launch_at_login_service.h"
#include "services/update_checker.h"
#include "ui/menu/status_menu.h"

namespace ferrowyn {

namespace {

void callIfSet(const std::function<void()>& action) {
    if (action) {
        action();
    }
}

}  // namespace

StatusItemController::StatusItemController(const Platform& platform, StatusItem& statusItem, AppServices& services,
                                           Actions actions, Translator translate)
    : application_(platform.application),
      texts_(platform.texts),
      applicationName_(platform.application.bundleInfo().name.value_or("Ferrowyn")),
      statusItem_(statusItem),
      services_(services),
      actions_(std::move(actions)),
      translate_(std::move(translate)),
      update_(postTo(platform.mainLoop), [this] {
          configureButton();
          buildMenu();
      }) {
    statusItem_.setActionHandler(life_.guard([this](const MenuRow& row) { perform(row); }));
}

void StatusItemController::configureButton() {
    const auto health = appearance(healthState(services_), texts_.statusItem);
    statusItem_.setButton({.symbol = std::string(health.buttonSymbol),
                           .tooltip = translate_({health.texts.tooltip, {}}),
                           .accessibilityLabel = translate_({texts_.statusItem.programName, {}})});
}

void StatusItemController::buildMenu() {
    statusItem_.setMenu(makeStatusMenu(services_, texts_, applicationName_, translate_));
}

void StatusItemController::followServices() {
    const auto follow = [this](const auto& published) {
        cancellables_.push_back(published.subscribeToChanges([this](const auto&) { update_.request(); }));
    };
    follow(services_.authorizer().status());
    follow(services_.authorizer().isSecureInputActive());
    follow(services_.inputFailure());
    follow(services_.switchingHealth().problem());
    follow(services_.preferences().layout.published());
    follow(services_.updates().state());
    // The first list of windows comes after the start. Without this, the menu would count none until something else
    // changes.
    const auto& windows = services_.windowIndex().windows();
    cancellables_.push_back(
        windows.subscribeToChanges([this, wasEmpty = windows.get().empty()](const auto& list) mutable {
            if (std::exchange(wasEmpty, list.empty()) && !list.empty()) {
                update_.request();
            }
        }));
}

void StatusItemController::perform(const MenuRow& row) {
    using Action = MenuRow::Action;
    switch (row.action) {
        case Action::none:
            return;
        case Action::retryInput:
            return retryInput();
        case Action::showSwitcher:
            return services_.switcher().showFromMenu();
        case Action::selectLayout:
            return selectLayout(row.representedValue);
        case Action::toggleLaunchAtLogin:
            return toggleLaunchAtLogin();
        case Action::openSettings:
            return callIfSet(actions_.onOpenSettings);
        case Action::openOnboarding:
            return callIfSet(actions_.onOpenOnboarding);
        case Action::openAbout:
            return callIfSet(actions_.onOpenAbout);
        case Action::downloadUpdate:
            return services_.updates().openDownloadPage();
        case Action::quit:
            return application_.terminate();
    }
}

void StatusItemController::retryInput() {
    services_.retryInput();
    buildMenu();
}

void StatusItemController::selectLayout(std::string_view representedValue) {
    if (const auto layout = switcherLayoutFromRawValue(representedValue)) {
        services_.preferences().layout.set(*layout);
    }
    buildMenu();
}

void StatusItemController::toggleLaunchAtLogin() {
    auto& launchAtLogin = services_.launchAtLogin();
    launchAtLogin.setEnabled(!launchAtLogin.startsAtLogin());
    if (launchAtLogin.requiresApproval()) {
        launchAtLogin.openLoginItemsSettings();
    }
    buildMenu();
}

}  // namespace ferrowyn
