#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/published.h"
#include "platform/workspace.h"
#include "platform/x11/x11_desktop_monitor.h"

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
        /// Shows the program's own page for an address of the system settings; false when there is none (yet).
        std::function<bool(std::string_view)> openSettingsPage;
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

private:
    const X11DesktopModel& model_;
    Desktop desktop_;
    Subject<WorkspaceEvent> events_;
    Subscription modelEvents_;
    Subscription screenChanges_;
};

}  // namespace ferrowyn
