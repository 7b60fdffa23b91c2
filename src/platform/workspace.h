#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"
#include "platform/application.h"

namespace ferrowyn {

/// A running application as the desktop describes it at one moment.
struct RunningApplication {
    Pid pid = 0;
    bool isTerminated = false;
    ActivationPolicy activationPolicy = ActivationPolicy::regular;
    /// Absent for a process that belongs to no installed application.
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> localizedName;
    /// An absolute path: a bundle on macOS, a desktop file elsewhere.
    std::optional<std::string> bundleURL;
};

/// Something that happened to an application, to the Spaces or to the screens.
struct WorkspaceEvent {
    enum class Kind {
        didLaunch,
        didTerminate,
        didActivate,
        didHide,
        didUnhide,
        activeSpaceDidChange,
        screenParametersDidChange,
    };
    Kind kind = Kind::didLaunch;
    /// The application of the event; absent for the last two kinds, and where the desktop does not report it.
    std::optional<RunningApplication> application;
};

/// A page of the system's settings. A desktop without such a page opens what serves the same purpose.
enum class SettingsPage {
    /// Where the user lets the program read and move windows.
    accessibility,
    /// What starts at login.
    loginItems,
};

/// The running and installed applications of the desktop. Main thread. No call waits for another process.
class Workspace {
public:
    virtual ~Workspace() = default;

    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() const = 0;
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(Pid pid) const = 0;
    /// The application that has the keyboard; nothing when there is none or the desktop does not report it.
    [[nodiscard]] virtual std::optional<Pid> frontmostPid() const = 0;

    using EventHandler = std::function<void(const WorkspaceEvent&)>;
    [[nodiscard]] virtual Subscription observe(EventHandler handler) = 0;

    /// The name of the installed application with this identifier: its display name, else its plain name (an empty
    /// string counts as a name); nothing when it is not installed or cannot be read.
    [[nodiscard]] virtual std::optional<std::string> installedApplicationName(
        std::string_view bundleIdentifier) const = 0;
    /// The path of the installed application with this identifier, in the form of `RunningApplication::bundleURL`;
    /// nothing when it is not installed.
    [[nodiscard]] virtual std::optional<std::string> installedApplicationPath(
        std::string_view bundleIdentifier) const = 0;

    /// Opens the address with the desktop's default handler; false when that could not be started. For a page of the
    /// system's settings that this desktop does not have, opens the program's own page instead.
    virtual bool open(std::string_view url) = 0;
    /// Shows the page, or what serves the same purpose where the desktop has none; false when there is neither, or it
    /// could not even be started.
    virtual bool openSettings(SettingsPage page) = 0;
};

}  // namespace ferrowyn
