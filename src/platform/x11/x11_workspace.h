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

/// Running applications, as the model knows them, and installed ones. Main thread.
class X11Workspace final : public Workspace {
public:
    /// The functions that need no X server.
    struct Desktop {
        /// The display name of the installed application with this identifier.
        std::function<std::optional<std::string>(std::string_view)> installedApplicationName;
        std::function<std::optional<std::string>(std::string_view)> installedApplicationPath;
        /// Opens a URL with the desktop's handler and does not wait for it; false when the handler cannot be started.
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

/// Makes observers, each of which gets the model's notifications about one application. Main thread.
class X11AccessibilityObservers final : public AccessibilityObservers {
public:
    /// The model outlives this and every observer.
    explicit X11AccessibilityObservers(const X11DesktopModel& model) : model_(model) {}

    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) override;

private:
    const X11DesktopModel& model_;
};

/// The program itself. Main thread.
class X11Application final : public Application {
public:
    /// Both outlive this.
    X11Application(const X11DesktopModel& model, X11WindowControl& windows) : model_(model), windows_(windows) {}

    [[nodiscard]] Pid ownPid() const override;
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override;
    [[nodiscard]] BundleInfo bundleInfo() const override;
    [[nodiscard]] std::string systemVersion() const override;
    [[nodiscard]] std::optional<int> calendarYear(WallTime moment) const override;
    /// Does nothing: the task bar shows each open window anyway.
    void setActivationPolicy(ActivationPolicy policy) override;
    /// Does nothing: the window manager activates windows, not programs.
    void activate() override;
    void bringToFront(WindowId window) override;
    void terminate() override;
    void revealInFileManager() override;

private:
    const X11DesktopModel& model_;
    X11WindowControl& windows_;
};

}  // namespace ferrowyn
