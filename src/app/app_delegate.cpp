#include "app/app_delegate.h"

#include <cassert>
#include <optional>

#include "app/app_services.h"
#include "core/texts.h"
#include "input/switcher_controller.h"
#include "platform/application.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/workspace.h"
#include "ui/menu/status_item_controller.h"

namespace ferrowyn {

AppDelegate::AppDelegate(const Platform& platform, UserInterface& userInterface)
    : platform_(platform), userInterface_(userInterface) {}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    assert(platform_.mainLoop.isMainThread());
    assert(!services_);
    platform_.application.setActivationPolicy(ActivationPolicy::accessory);
    services_ = std::make_unique<AppServices>(platform_, userInterface_.switcherContentFactory());
    makeWindows();
    makeStatusItem();
    if (services_->authorizer().status().get() == AccessibilityStatus::notTrusted) {
        welcomeWithoutTrust();
    }
    showAwaitedSettings();
}

void AppDelegate::makeWindows() {
    const auto& texts = platform_.texts.utility;
    const auto name = platform_.application.bundleInfo().name.value_or("Ferrowyn");
    onboarding_ = userInterface_.makeOnboardingWindow({.title = {texts.setupWindowTitle, {}}}, *services_,
                                                      weakly(&AppDelegate::closeOnboarding));
    settings_ =
        userInterface_.makeSettingsWindow({.title = {texts.settingsWindowTitle, {}}, .isResizable = true}, *services_);
    about_ =
        userInterface_.makeAboutWindow({.title = {texts.aboutWindowTitle, {name}}}, weakly(&AppDelegate::closeAbout));
}

void AppDelegate::makeStatusItem() {
    statusItem_ = userInterface_.makeStatusItem();
    statusItemController_ = std::make_unique<StatusItemController>(
        platform_, *statusItem_, *services_,
        StatusItemController::Actions{.onOpenSettings = weakly(&AppDelegate::showSettings),
                                      .onOpenOnboarding = weakly(&AppDelegate::showOnboarding),
                                      .onOpenAbout = weakly(&AppDelegate::showAbout)},
        [&userInterface = userInterface_](const Phrase& phrase) { return userInterface.translated(phrase); });
    statusItemController_->configureButton();
    statusItemController_->buildMenu();
    statusItemController_->followServices();
}

void AppDelegate::welcomeWithoutTrust() {
    auto& authorizer = services_->authorizer();
    authorizer.requestTrust();
    // The user is about to grant it, so the next reading comes a whole interval after the prompt.
    authorizer.restartBackstopTimer();
    showOnboarding();
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    showOnboarding();
    return true;
}

void AppDelegate::applicationWillTerminate() {
    if (services_) {
        services_->terminate();
    }
}

void AppDelegate::perform(ProgramRequest request) {
    switch (request) {
        case ProgramRequest::openSetup:
            return showOnboarding();
        case ProgramRequest::openSwitcher:
            return openSwitcher();
        case ProgramRequest::openSettings:
            return showSettings();
        case ProgramRequest::quit:
            // Posted, because the request may come while the program starts and no loop runs that could end.
            platform_.mainLoop.post([&application = platform_.application] { application.terminate(); });
            return;
    }
}

bool AppDelegate::showSettingsPage(SettingsPage page) {
    if (!services_ || page != SettingsPage::accessibility) {
        return false;
    }
    showOnboarding();
    return true;
}

void AppDelegate::openSwitcher() {
    if (!services_) {
        return;
    }
    if (!services_->isActive()) {
        return showOnboarding();
    }
    // A session shows the list that exists when it opens. Right after the start there is none yet.
    const auto& lastRefresh = services_->windowIndex().lastRefresh();
    if (lastRefresh.get()) {
        services_->switcher().showFromMenu();
        return;
    }
    firstWindowList_ = lastRefresh.subscribeToChanges([this](const std::optional<TimePoint>&) {
        firstWindowList_.reset();
        services_->switcher().showFromMenu();
    });
    // When trust changes before the first list comes, the request is dropped: the user no longer expects the switcher.
    trustChange_ =
        services_->authorizer().status().subscribeToChanges([this](AccessibilityStatus) { firstWindowList_.reset(); });
}

std::function<void()> AppDelegate::weakly(void (AppDelegate::*action)()) {
    return life_.guard([this, action] { (this->*action)(); });
}

void AppDelegate::showOnboarding() {
    if (onboarding_) {
        onboarding_->show();
    }
}

void AppDelegate::closeOnboarding() {
    if (onboarding_) {
        onboarding_->close();
    }
}

void AppDelegate::showSettings() {
    if (settings_) {
        settings_->show();
        return;
    }
    if (!progress_) {
        progress_ = userInterface_.makeProgressWindow({.title = {platform_.texts.utility.settingsWindowTitle, {}}});
    }
    progress_->show();
}

void AppDelegate::showAwaitedSettings() {
    if (progress_) {
        // Shown before the other is closed, so that the program always has a window and stays among the running
        // applications.
        settings_->show();
        progress_->close();
        progress_.reset();
    }
}

void AppDelegate::showAbout() {
    if (about_) {
        about_->show();
    }
}

void AppDelegate::closeAbout() {
    if (about_) {
        about_->close();
    }
}

}  // namespace ferrowyn
