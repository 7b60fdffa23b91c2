#pragma once

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/window_inventory.h"
#include "platform/x11/x11_application_directory.h"
#include "platform/x11/x11_desktop_snapshot.h"
#include "platform/x11/x11_focus_history.h"

namespace ferrowyn {

/// Answers one snapshot's questions from one reading of the desktop. Any thread; nothing here talks to the server.
class X11InventoryReading final : public InventoryReading {
public:
    /// `scale` is device pixels a point. The directory and the history outlive this.
    X11InventoryReading(X11DesktopSnapshot snapshot, double scale, const X11ApplicationDirectory& directory,
                        const X11FocusHistory& history);

    [[nodiscard]] std::optional<std::vector<WindowServerEntry>> windowList() const override;
    [[nodiscard]] std::unordered_set<WindowId> onScreenWindowIds() const override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds messagingTimeout) const override;
    [[nodiscard]] bool hasWindowNumberLookup() const override { return true; }

    /// How often the reading waited for the server.
    [[nodiscard]] int roundTrips() const { return snapshot_.roundTrips; }

private:
    /// Notes which windows are blocked by which modal dialogs.
    void findBlockedWindows();
    /// The dialog that takes the window's input in the end.
    [[nodiscard]] std::optional<ModalDialog> blockerOf(xcb_window_t window) const;
    [[nodiscard]] const X11WindowFacts* find(xcb_window_t window) const;
    [[nodiscard]] std::optional<Rect> frameInPoints(const X11WindowFacts& window) const;

    X11DesktopSnapshot snapshot_;
    double scale_;
    const X11FocusHistory& history_;
    std::vector<RunningApplication> applications_;
    std::unordered_map<Pid, std::vector<const X11WindowFacts*>> windowsByPid_;
    std::unordered_map<xcb_window_t, const X11WindowFacts*> windowsById_;
    /// The front-most modal dialog of each window that has one.
    std::unordered_map<xcb_window_t, const X11WindowFacts*> dialogs_;
};

}  // namespace ferrowyn
