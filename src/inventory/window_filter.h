#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/app_window.h"
#include "core/geometry.h"
#include "platform/workspace.h"

namespace ferrowyn {

/// What the window server reports about one window, with a default for each missing value.
struct WindowMetadata {
    /// Position in the server's list, 0 = front-most.
    std::int64_t zOrder = 0;
    std::string ownerName;
    bool isOnScreen = false;
    bool isOnActiveSpace = false;
    /// Global coordinates in points, y growing downward; all zero when unknown.
    Rect bounds;
    double alpha = 1.0;
    std::int64_t layer = 0;
    Pid pid = 0;
};

/// Decides which applications, and which of their windows, may appear in the switcher. A plain value; any thread.
class WindowFilter {
public:
    /// One window as the enumerator has read it.
    struct Candidate {
        /// Absent when it could not be read.
        std::optional<std::string_view> subrole;
        std::string_view title;
        bool isMinimized = false;
        /// The frame that the application reports, else the server's; absent when neither is known.
        std::optional<Rect> frame;
        /// Null when the window server does not list the window.
        const WindowMetadata* metadata = nullptr;
    };

    /// The switcher's own windows are never listed.
    explicit WindowFilter(Pid ownPid) : ownPid_(ownPid) {}

    /// Whether any of the application's windows may be listed.
    [[nodiscard]] bool isSwitchable(const RunningApplication& application) const;
    /// Whether this window of a switchable application may be listed.
    [[nodiscard]] bool isSwitchable(const Candidate& window) const;
    /// Whether an entry of the window server's list counts as a live application window.
    [[nodiscard]] bool isApplicationWindow(const WindowMetadata& metadata) const;

    /// In points. Smaller windows are auxiliary ones, to which users do not switch.
    static constexpr double minimumSide = 48;
    /// A window must be more opaque than this.
    static constexpr double invisibleAlpha = 0.05;

    /// Compared exactly, case included. The process names count only for processes without an identifier.
    static constexpr std::array<std::string_view, 19> excludedBundleIdentifiers{
        "com.apple.dock",
        "com.apple.controlcenter",
        "com.apple.notificationcenterui",
        "com.apple.systemuiserver",
        "com.apple.Spotlight",
        "com.apple.loginwindow",
        "com.apple.SecurityAgent",
        "com.apple.WindowManager",
        "com.apple.screencaptureui",
        "com.apple.wallpaper.agent",
        "com.apple.dock.extra",
        "com.apple.CoreLocationAgent",
        "com.apple.TextInputMenuAgent",
        "com.apple.TextInputSwitcher",
        "com.apple.universalaccess.MagnifierWindow",
        "com.apple.PowerChime",
        "com.apple.UserNotificationCenter",
        "com.apple.talagent",
        "com.apple.dt.Xcode.PlaygroundStub-macosx",
    };
    static constexpr std::array<std::string_view, 4> excludedProcessNames{"Window Server", "WindowServer", "Wallpaper",
                                                                          "universalaccessd"};
    static constexpr std::array<std::string_view, 1> standardWindowSubroles{"AXStandardWindow"};
    static constexpr std::array<std::string_view, 2> dialogSubroles{"AXDialog", "AXSystemDialog"};

private:
    Pid ownPid_;
};

}  // namespace ferrowyn
