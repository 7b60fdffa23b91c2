#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/posted_work.h"
#include "platform/main_loop.h"
#include "platform/window_inventory.h"
#include "platform/x11/x11_applications.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/x11_desktop_monitor.h"
#include "platform/x11/x11_window_properties.h"

namespace ferrowyn {

/// Gets copies of the model for other threads. Owned by `X11Platform`.
class X11DesktopSnapshots {
public:
    /// Both outlive this.
    X11DesktopSnapshots(MainLoop& mainLoop, X11DesktopMonitor& monitor) : mainLoop_(mainLoop), monitor_(monitor) {}

    /// The desktop as it is now. Any thread but the main one: waits for the main loop, which asks the server.
    [[nodiscard]] X11DesktopSnapshot take();

    enum class End { connectionLost, programEnds };
    /// Ends every wait of `take`, now and later. The snapshot is invalid when the connection was lost, and valid and
    /// empty when the program ends, which is no fault to report. Only the first call counts. Main thread. Call it
    /// before the threads that may wait are joined.
    void close(End end);

private:
    /// What one caller waits for. Shared by that caller and the main loop's task, which may come too late.
    struct Request {
        std::optional<X11DesktopSnapshot> answer;
    };

    MainLoop& mainLoop_;
    X11DesktopMonitor& monitor_;
    /// Guards `end_` and the answers.
    std::mutex mutex_;
    std::condition_variable answered_;
    std::optional<End> end_;
    LifeToken life_;
};

/// Answers the questions of one inventory snapshot from one copy of the model. Any thread; sends no requests.
class X11InventoryReading final : public InventoryReading {
public:
    /// `scale` is in device pixels per point. The directory outlives this.
    X11InventoryReading(X11DesktopSnapshot snapshot, double scale, const X11ApplicationDirectory& directory);

    [[nodiscard]] std::optional<std::vector<WindowServerEntry>> windowList() const override;
    [[nodiscard]] std::unordered_set<WindowId> onScreenWindowIds() const override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds messagingTimeout) const override;
    [[nodiscard]] bool hasWindowNumberLookup() const override { return true; }

    /// How many round trips the snapshot took.
    [[nodiscard]] int roundTrips() const { return snapshot_.roundTrips; }

private:
    /// Fills `dialogs_`.
    void findBlockedWindows();
    /// The dialog that takes the window's input. When that dialog is blocked too, the last one of the chain.
    [[nodiscard]] std::optional<ModalDialog> blockerOf(xcb_window_t window) const;
    [[nodiscard]] const X11WindowFacts* find(xcb_window_t window) const;
    [[nodiscard]] std::optional<Rect> frameInPoints(const X11WindowFacts& window) const;

    X11DesktopSnapshot snapshot_;
    double scale_;
    std::vector<RunningApplication> applications_;
    std::unordered_map<Pid, std::vector<const X11WindowFacts*>> windowsByPid_;
    std::unordered_map<xcb_window_t, const X11WindowFacts*> windowsById_;
    /// The front-most modal dialog that blocks each window.
    std::unordered_map<xcb_window_t, const X11WindowFacts*> dialogs_;
};

/// Lists the windows. Workers call `beginReading`, which waits for a copy of the model; the main thread calls the rest,
/// which the model answers without a round trip.
class X11WindowInventory final : public WindowInventory {
public:
    /// `scale` is in device pixels per point. All references outlive this.
    X11WindowInventory(X11DesktopSnapshots& snapshots, const X11DesktopModel& model,
                       const X11ApplicationDirectory& directory, const std::atomic<double>& scale)
        : snapshots_(snapshots), model_(model), directory_(directory), scale_(scale) {}

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override;
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override;
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const override;

private:
    X11DesktopSnapshots& snapshots_;
    const X11DesktopModel& model_;
    const X11ApplicationDirectory& directory_;
    const std::atomic<double>& scale_;
};

}  // namespace ferrowyn
