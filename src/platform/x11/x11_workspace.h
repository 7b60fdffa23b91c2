#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/published.h"
#include "platform/accessibility_observers.h"
#include "platform/application.h"
#include "platform/workspace.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/x11_desktop_monitor.h"
#include "platform/x11/x11_window_control.h"

namespace ferrowyn {

/// Running applications as the model has them. Main thread.
class X11Workspace final : public Workspace {
public:
    /// What lies outside the X server.
    struct Desktop {
        /// The display name of the installed application with this identifier.
        std::function<std::optional<std::string>(std::string_view)> installedApplicationName;
        std::function<std::optional<std::string>(std::string_view)> installedApplicationPath;
        /// Hands an address to the desktop's handler without waiting for it; false when that cannot be started.
        std::function<bool(std::string_view)> openAddress;
        /// Shows what serves the purpose of this page of the system settings; false when there is nothing (yet).
        std::function<bool(SettingsPage)> openSettings;
    };

    /// The monitor outlives this.
    X11Workspace(const X11DesktopMonitor& monitor, Desktop desktop);

    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid pid) const override;
    [[nodiscard]] std::optional<Pid> frontmostPid() const override;
    [[nodiscard]] Subscription observe(EventHandler handler) override;
    [[nodiscard]] std::optional<std::string> installedApplicationName(std::string_view bundleIdentifier) const override;
    [[nodiscard]] std::optional<std::string> installedApplicationPath(std::string_view bundleIdentifier) const override;
    bool open(std::string_view url) override;
    bool openSettings(SettingsPage page) override;

private:
    const X11DesktopModel& model_;
    Desktop desktop_;
    Subject<WorkspaceEvent> events_;
    Subscription modelEvents_;
    Subscription screenChanges_;
};

/// Hands the model's notifications to the observers of the applications they are about. Main thread.
class X11AccessibilityObservers final : public AccessibilityObservers {
public:
    /// The model outlives this and every observer.
    explicit X11AccessibilityObservers(const X11DesktopModel& model) : model_(model) {}

    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) override;

private:
    const X11DesktopModel& model_;
};

class X11Application final : public Application {
public:
    /// Both outlive this.
    X11Application(const X11DesktopModel& model, X11WindowControl& windows) : model_(model), windows_(windows) {}

    [[nodiscard]] Pid ownPid() const override;
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override;
    [[nodiscard]] BundleInfo bundleInfo() const override;
    [[nodiscard]] std::string systemVersion() const override;
    [[nodiscard]] std::optional<int> calendarYear(WallTime moment) const override;
    /// A window that is open is in the task bar anyway; there is nothing to switch.
    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void bringToFront(WindowId window) override;
    void terminate() override;
    void revealInFileManager() override;

private:
    const X11DesktopModel& model_;
    X11WindowControl& windows_;
};

}  // namespace ferrowyn
