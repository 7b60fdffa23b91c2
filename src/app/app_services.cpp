#include "app/app_services.h"

#include <cassert>
#include <string_view>
#include <utility>
#include <variant>

#include "core/switcher_view_model.h"
#include "input/switcher_controller.h"
#include "input/switcher_panel.h"
#include "input/window_activator.h"
#include "platform/application.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/trust.h"
#include "platform/workspace.h"

namespace ferrowyn {

namespace {

constexpr std::string_view inputCategory = "input";
constexpr std::string_view permissionsCategory = "permissions";
constexpr Seconds tapRetryDelay{1.0};

}  // namespace

AppServices::AppServices(const Platform& platform, const SwitcherContentFactory& makeContent,
                         std::unique_ptr<Preferences> preferences)
    : platform_(platform),
      preferences_(preferences ? std::move(preferences) : std::make_unique<Preferences>(platform.userDefaults)),
      authorizer_(platform),
      iconProvider_(platform.icons, platform.workspace),
      windowIndex_(platform),
      iconPrefetcher_(platform.mainLoop, platform.workspace, iconProvider_, windowIndex_.windows()),
      hotKeyMonitor_(platform, preferences_->modifier.get()),
      launchAtLogin_(platform),
      favourites_(platform.userDefaults, platform.workspace),
      updates_(platform, AppVersion(platform.application.bundleInfo().shortVersion.value_or("1.0"))),
      switchingHealth_(platform.log),
      switcher_(makeSwitcher(makeContent)) {
    wireHotKeyMonitor();
    watchSwitching();
    updates_.checkIfDue(preferences_->automaticUpdateChecks.get());
    followTrust();
}

AppServices::~AppServices() = default;

std::unique_ptr<SwitcherController> AppServices::makeSwitcher(const SwitcherContentFactory& makeContent) {
    auto viewModel = std::make_unique<SwitcherViewModel>(
        preferences_->sessionSettings(), iconProvider_, favourites_,
        [&workspace = platform_.workspace] { return workspace.frontmostPid(); }, postTo(platform_.mainLoop));
    viewModel->bind(windowIndex_.windows(), authorizer_.status());
    auto switcher = std::make_unique<SwitcherController>(
        platform_,
        SwitcherController::Parts{.panel = std::make_unique<SwitcherPanel>(platform_.panel),
                                  .viewModel = std::move(viewModel),
                                  .activator = std::make_unique<WindowActivator>(platform_),
                                  .preferences = *preferences_,
                                  .favourites = favourites_,
                                  .windowIndex = windowIndex_,
                                  .authorizer = authorizer_,
                                  .hotKeyMonitor = hotKeyMonitor_},
        makeContent);
    // The controller owns the activator, so it exists when the activator reports to it.
    switcher->activator().onActivated = [controller = switcher.get()](const AppWindow& window) {
        controller->noteActivated(window);
    };
    switcher->activator().onVerified = [this](bool isConfirmed, Pid application) {
        switchingHealth_.noteActivation(isConfirmed, application);
    };
    return switcher;
}

/// The monitor is a member and calls no hook during its destruction, so the hooks may use this object.
void AppServices::wireHotKeyMonitor() {
    hotKeyMonitor_.onCommand = [this](const SwitcherCommand& command) {
        if (std::holds_alternative<command::Invoke>(command)) {
            switchingHealth_.noteTrigger();
        }
        switcher_->handle(command);
    };
    hotKeyMonitor_.onTapDisabled = [this] { switcher_->dismiss(); };
    hotKeyMonitor_.onTapFailed = [this](HotKeyMonitor::Failure failure) { handleTapFailure(failure); };
}

void AppServices::watchSwitching() {
    lostTriggers_ = platform_.trust.observeLostTriggers([this] { switchingHealth_.noteTriggerAnsweredElsewhere(); });
    triggerChanges_ = preferences_->modifier.published().subscribeToChanges(
        [this](SwitcherModifier) { switchingHealth_.forgetTriggers(); });
}

void AppServices::handleTapFailure(HotKeyMonitor::Failure failure) {
    switcher_->dismiss();
    inputFailure_.set(failure);
    switch (failure) {
        case HotKeyMonitor::Failure::repeatedTimeouts:
            platform_.log.write(LogLevel::error, inputCategory, "Global shortcut disabled after repeated tap timeouts");
            break;
        case HotKeyMonitor::Failure::trustRevoked:
            // The changed status suspends the other services that need trust.
            authorizer_.refresh();
            break;
    }
}

void AppServices::followTrust() {
    trustSubscription_ = authorizer_.status().subscribeToDistinct([this](AccessibilityStatus status) {
        if (status == AccessibilityStatus::trusted) {
            activate();
        } else {
            suspend();
        }
    });
}

void AppServices::activate() {
    assert(platform_.mainLoop.isMainThread());
    if (isActive_) {
        return;
    }
    isActive_ = true;
    inputFailure_.set(std::nullopt);
    // On some desktops trust comes with a window manager, which may be a different one now.
    switchingHealth_.forgetAll();
    windowIndex_.start();
    if (!hotKeyMonitor_.start()) {
        platform_.log.write(LogLevel::error, inputCategory, "Event tap refused despite trust; retrying");
        tapRetry_ = platform_.mainLoop.after(tapRetryDelay, [this] {
            if (isActive_) {
                hotKeyMonitor_.start();
            }
        });
    }
    platform_.log.write(LogLevel::standard, permissionsCategory, "Services active");
}

void AppServices::suspend() {
    assert(platform_.mainLoop.isMainThread());
    if (!isActive_) {
        return;
    }
    isActive_ = false;
    switcher_->dismiss();
    hotKeyMonitor_.stop();
    windowIndex_.stop();
    iconProvider_.removeAll();
    platform_.log.write(LogLevel::standard, permissionsCategory, "Services suspended — Accessibility trust missing");
}

void AppServices::retryInput() {
    inputFailure_.set(std::nullopt);
    if (authorizer_.status().get() != AccessibilityStatus::trusted) {
        authorizer_.openAccessibilitySettings();
        return;
    }
    hotKeyMonitor_.stop();
    if (!hotKeyMonitor_.start()) {
        inputFailure_.set(HotKeyMonitor::Failure::trustRevoked);
    }
}

void AppServices::terminate() {
    hotKeyMonitor_.stop();
    windowIndex_.stop();
}

}  // namespace ferrowyn
