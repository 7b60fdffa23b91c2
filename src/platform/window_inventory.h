#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"

namespace ferrowyn {

/// What the window server reports about one window. Every field may be absent; the logic has the defaults.
struct WindowServerEntry {
    std::optional<WindowId> id;
    std::optional<std::string> ownerName;
    std::optional<bool> isOnScreen;
    /// Global coordinates in points, y growing downward.
    std::optional<Rect> bounds;
    /// 0 (invisible) to 1.
    std::optional<double> alpha;
    /// 0 for normal windows.
    std::optional<std::int64_t> layer;
    std::optional<Pid> ownerPid;
};

/// One window as its application's Accessibility interface describes it. A field that could not be read is absent.
struct AccessibleWindow {
    AXElementRef element;
    /// The number of the element's window; absent when the system has no such lookup or it failed.
    std::optional<WindowId> windowNumber;
    std::optional<std::string> subrole;
    std::optional<std::string> title;
    std::optional<bool> isMinimized;
    std::optional<bool> isFullScreen;
    std::optional<Point> position;
    std::optional<Size> size;
    /// The modal dialog that takes this window's input; the last one where dialogs block dialogs. Absent when there is
    /// none, and where the desktop does not report it.
    std::optional<ModalDialog> blockedBy;
};

/// All windows of one application, with its focused window.
struct AccessibleApplication {
    std::optional<AXElementRef> focusedWindow;
    std::vector<AccessibleWindow> windows;
};

/// One reading of the desktop, for one snapshot. Where the system answers in bulk, the adapter fetches everything when
/// the reading begins. Where each application is asked separately, the adapter asks during the call. Several worker
/// threads may call at once; the main thread must not.
class InventoryReading {
public:
    virtual ~InventoryReading() = default;

    /// All windows of all Spaces, front-most first, without desktop elements; nothing when the server did not answer.
    /// The order is unspecified where the desktop does not report the stacking.
    [[nodiscard]] virtual std::optional<std::vector<WindowServerEntry>> windowList() const = 0;
    /// The windows of the active Space; empty when the server did not answer.
    [[nodiscard]] virtual std::unordered_set<WindowId> onScreenWindowIds() const = 0;
    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() const = 0;
    /// The windows of one application; nothing when it has no Accessibility interface or did not answer a request
    /// within `messagingTimeout`. The call may make several requests.
    [[nodiscard]] virtual std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds messagingTimeout) const = 0;
    /// False when the system cannot find the window number of an element. Windows are matched by geometry then.
    [[nodiscard]] virtual bool hasWindowNumberLookup() const = 0;
};

/// Reports which windows exist. Worker threads make readings; the rest is for the main thread.
class WindowInventory {
public:
    virtual ~WindowInventory() = default;

    /// Begins a reading. On a worker thread; may wait for the system, and for the main loop, which must be running.
    /// Never null.
    [[nodiscard]] virtual std::unique_ptr<InventoryReading> beginReading() const = 0;

    /// The numbers of the window list, front-most first; an entry without a number is empty. Nothing when the server
    /// does not answer. Main thread. Fast: an adapter that gets notifications of restacking keeps the list ready.
    [[nodiscard]] virtual std::optional<std::vector<std::optional<WindowId>>> windowOrder() const = 0;

    /// The window number of the application's focused window; nothing when it has none, does not answer within
    /// `messagingTimeout`, or its element has no number. Main thread.
    [[nodiscard]] virtual std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const = 0;
};

}  // namespace ferrowyn
