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
    /// The application it happened to; absent for the last two kinds, and where a desktop cannot tell.
    std::optional<RunningApplication> application;
};

/// Addresses for `Workspace::open` that stand for a page of the system's settings. A desktop without such a page
/// answers them with what serves the same purpose there.
namespace settings_page {
inline constexpr std::string_view accessibility =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
inline constexpr std::string_view loginItems = "x-apple.systempreferences:com.apple.LoginItems-Settings.extension";
}  // namespace settings_page

/// The desktop's view of running applications. Main thread. Nothing here waits for another process.
class Workspace {
public:
    virtual ~Workspace() = default;

    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() const = 0;
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(Pid pid) const = 0;
    /// The application that has the keyboard; nothing when there is none or the desktop does not tell.
    [[nodiscard]] virtual std::optional<Pid> frontmostPid() const = 0;

    using EventHandler = std::function<void(const WorkspaceEvent&)>;
    [[nodiscard]] virtual Subscription observe(EventHandler handler) = 0;

    /// The name of the installed application with this identifier: its display name, else its plain name (an empty
    /// string counts as a name); nothing when it is not installed or cannot be read.
    [[nodiscard]] virtual std::optional<std::string> installedApplicationName(
        std::string_view bundleIdentifier) const = 0;
    /// Where the installed application with this identifier lies, as `RunningApplication::bundleURL` says it; nothing
    /// when it is not installed.
    [[nodiscard]] virtual std::optional<std::string> installedApplicationPath(
        std::string_view bundleIdentifier) const = 0;

    /// Hands the address to the desktop's default handler; false when that could not even be started. A page of the
    /// system settings that this desktop does not have opens the program's own twin of it.
    virtual bool open(std::string_view url) = 0;
};

}  // namespace ferrowyn
