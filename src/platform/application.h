#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/app_window.h"
#include "core/published.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// How an application takes part in the desktop. The values are those of NSApplicationActivationPolicy.
enum class ActivationPolicy { regular = 0, accessory = 1, prohibited = 2 };

/// What the installation says about the program. A field is absent when the installation does not have it.
struct BundleInfo {
    /// "CFBundleName" on macOS.
    std::optional<std::string> name;
    /// "CFBundleShortVersionString" on macOS.
    std::optional<std::string> shortVersion;
    /// "NSHumanReadableCopyright" on macOS.
    std::optional<std::string> copyright;
    /// Absolute path of what a file manager shows as the program.
    std::string path;
    /// The host, with a port where it needs one, that serves the update manifest over HTTPS. "FerrowynUpdateHost" on
    /// macOS.
    std::optional<std::string> updateHost;
    /// An https address. "FerrowynHomePage" on macOS.
    std::optional<std::string> homePage;
};

/// This process as the desktop knows it. Main thread.
class Application {
public:
    virtual ~Application() = default;

    [[nodiscard]] virtual Pid ownPid() const = 0;
    /// Calls the handler each time this program becomes the active one (the user came back to one of its windows).
    [[nodiscard]] virtual Subscription observeDidBecomeActive(std::function<void()> handler) = 0;

    [[nodiscard]] virtual BundleInfo bundleInfo() const = 0;
    /// The operating system's major and minor version numbers joined by ".", such as "14.5".
    [[nodiscard]] virtual std::string systemVersion() const = 0;
    /// The year of this moment in the calendar that the user has chosen, such as 2569 in the Buddhist one; absent on a
    /// desktop that has only the Gregorian one.
    [[nodiscard]] virtual std::optional<int> calendarYear(WallTime moment) const = 0;

    /// Whether the program has a place among the running applications (a Dock icon, a task bar entry) beside its
    /// windows. Has no effect on desktops without such a choice.
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    /// Makes the program the active one, whatever is active now.
    virtual void activate() = 0;
    /// Brings one of the program's own windows, which is on the screen, to the front with the keyboard, whatever is
    /// active now.
    virtual void bringToFront(WindowId window) = 0;
    /// Ends the program's main loop, as if the user had chosen Quit. Clean-up follows when the loop has ended.
    virtual void terminate() = 0;
    /// Shows the program itself in the file manager.
    virtual void revealInFileManager() = 0;
};

}  // namespace ferrowyn
