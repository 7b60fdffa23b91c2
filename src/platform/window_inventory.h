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

/// What the window server says about one window. Every field may be absent; the defaults are the logic's.
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

/// One window as its application's Accessibility interface describes it; absent is what could not be read.
struct AccessibleWindow {
    AXElementRef element;
    /// What the element-to-window-number lookup answered; absent when there is no such lookup or it failed.
    std::optional<WindowId> windowNumber;
    std::optional<std::string> subrole;
    std::optional<std::string> title;
    std::optional<bool> isMinimized;
    std::optional<bool> isFullScreen;
    std::optional<Point> position;
    std::optional<Size> size;
    /// The modal dialog that takes this window's input, the last one where dialogs block dialogs; absent when there is
    /// none, and where the desktop does not tell.
    std::optional<ModalDialog> blockedBy;
};

/// All windows of one application, with its focused window.
struct AccessibleApplication {
    std::optional<AXElementRef> focusedWindow;
    std::vector<AccessibleWindow> windows;
};

/// One look at the desktop, for one snapshot. An adapter whose system answers in bulk fetches everything when the
/// reading begins and answers from that; one whose system is asked application by application asks when it is asked.
/// Every method may be called from several worker threads at once; none from the main thread.
class InventoryReading {
public:
    virtual ~InventoryReading() = default;

    /// All windows of all Spaces, front-most first, without desktop elements; nothing when the server did not answer.
    /// The list may be in no particular order where the desktop does not tell its stacking.
    [[nodiscard]] virtual std::optional<std::vector<WindowServerEntry>> windowList() const = 0;
    /// The windows of the active Space; empty when the server did not answer.
    [[nodiscard]] virtual std::unordered_set<WindowId> onScreenWindowIds() const = 0;
    [[nodiscard]] virtual std::vector<RunningApplication> runningApplications() const = 0;
    /// The windows of one application with all that is asked of them; nothing when the application has no such
    /// interface or did not answer within `messagingTimeout` (a request; whole applications may take a few of them).
    [[nodiscard]] virtual std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds messagingTimeout) const = 0;
    /// False when this system has no element-to-window-number lookup, so that windows are matched by geometry.
    [[nodiscard]] virtual bool hasWindowNumberLookup() const = 0;
};

/// Which windows exist. The reading is for worker threads, the rest for the main thread.
class WindowInventory {
public:
    virtual ~WindowInventory() = default;

    /// Begins one look at the desktop. From a worker thread; may wait for the system. Never null.
    [[nodiscard]] virtual std::unique_ptr<InventoryReading> beginReading() const = 0;

    /// The window list's numbers alone, front-most first, an entry without a number as nothing; nothing at all when
    /// the server does not answer. Main thread; cheap, an adapter that is told of restacking keeps it ready.
    [[nodiscard]] virtual std::optional<std::vector<std::optional<WindowId>>> windowOrder() const = 0;

    /// The window number of the application's focused window; nothing when it has none, does not answer within
    /// `messagingTimeout`, or its element has no number. Main thread.
    [[nodiscard]] virtual std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const = 0;
};

}  // namespace ferrowyn
