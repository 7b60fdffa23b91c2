#pragma once

#include <memory>
#include <optional>

#include "core/published.h"
#include "input/hot_key_monitor.h"
#include "input/switcher_panel.h"
#include "input/switching_health.h"
#include "inventory/window_index.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/icon_provider.h"
#include "services/launch_at_login_service.h"
#include "services/preferences.h"
#include "services/update_checker.h"

namespace ferrowyn {

struct Platform;
class SwitcherController;

/// Owns and connects the long-lived services, and starts or suspends those that need Accessibility trust. Main thread;
/// AppDelegate owns it, and the platform outlives it.
class AppServices {
public:
    /// Makes preferences from the platform's store when none are given. When the process is trusted, the services are
    /// active after the construction.
    AppServices(const Platform& platform, const SwitcherContentFactory& makeContent,
                std::unique_ptr<Preferences> preferences = nullptr);
    ~AppServices();
    AppServices(const AppServices&) = delete;
    AppServices& operator=(const AppServices&) = delete;

    /// Starts the services that need trust.
    void activate();
    void suspend();
    /// Restarts the keyboard tap after a failure, or opens the system's settings page when the process is not trusted.
    void retryInput();
    /// Called when the program quits: stops the keyboard tap, then the observation of windows.
    void terminate();

    [[nodiscard]] bool isActive() const { return isActive_; }
    /// Why the global shortcut is off; nothing while it works or has not failed.
    [[nodiscard]] const Published<std::optional<HotKeyMonitor::Failure>>& inputFailure() const { return inputFailure_; }

    /// What the latest attempts to switch windows say about the desktop.
    [[nodiscard]] const SwitchingHealth& switchingHealth() const { return switchingHealth_; }

    [[nodiscard]] Preferences& preferences() { return *preferences_; }
    [[nodiscard]] AccessibilityAuthorizer& authorizer() { return authorizer_; }
    [[nodiscard]] IconProvider& iconProvider() { return iconProvider_; }
    [[nodiscard]] WindowIndex& windowIndex() { return windowIndex_; }
    [[nodiscard]] HotKeyMonitor& hotKeyMonitor() { return hotKeyMonitor_; }
    [[nodiscard]] LaunchAtLoginService& launchAtLogin() { return launchAtLogin_; }
    [[nodiscard]] FavouritesStore& favourites() { return favourites_; }
    [[nodiscard]] UpdateChecker& updates() { return updates_; }
    [[nodiscard]] SwitcherController& switcher() { return *switcher_; }

private:
    [[nodiscard]] std::unique_ptr<SwitcherController> makeSwitcher(const SwitcherContentFactory& makeContent);
    void wireHotKeyMonitor();
    void handleTapFailure(HotKeyMonitor::Failure failure);
    void followTrust();
    void watchSwitching();

    const Platform& platform_;
    Published<std::optional<HotKeyMonitor::Failure>> inputFailure_;
    bool isActive_ = false;

    // In the order of construction: each may use those above it.
    std::unique_ptr<Preferences> preferences_;
    AccessibilityAuthorizer authorizer_;
    IconProvider iconProvider_;
    WindowIndex windowIndex_;
    IconPrefetcher iconPrefetcher_;
    HotKeyMonitor hotKeyMonitor_;
    LaunchAtLoginService launchAtLogin_;
    FavouritesStore favourites_;
    UpdateChecker updates_;
    SwitchingHealth switchingHealth_;
    std::unique_ptr<SwitcherController> switcher_;

    Subscription tapRetry_;
    Subscription trustSubscription_;
    Subscription lostTriggers_;
    Subscription triggerChanges_;
};

}  // namespace ferrowyn
