#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/window_inventory.h"
#include "platform/x11/x11_applications.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/x11_owners.h"
#include "platform/x11/x11_root_properties.h"
#include "platform/x11/x11_window_properties.h"

namespace ferrowyn {

/// The whole desktop at one moment. Immutable once read.
struct X11DesktopSnapshot {
    /// The server answered.
    bool isValid = false;
    X11RootFacts root;
    /// Front-most first, desktop elements included.
    std::vector<X11WindowFacts> windows;
    /// How often the reading waited for the server.
    int roundTrips = 0;
};

/// Reads the whole desktop over a connection of its own, in at most three round trips however many windows there are:
/// what the manager publishes, then everything about every window, then the old forms of title and process for the few
/// windows that have no other. Any thread; a second reader waits for the first.
class X11DesktopReader {
public:
    /// The connection is this reader's alone; the atoms outlive it.
    X11DesktopReader(std::unique_ptr<X11Connection> connection, const X11Atoms& atoms);

    [[nodiscard]] X11DesktopSnapshot read();

    /// From now on what rarely changes about a window (its owner, its kind, its application) is kept from one reading
    /// to the next, which halves the requests. Whoever calls this sees to it that `forget` is.
    void keepLastingFacts();
    /// Some of that has changed, or may have, by the time of this call. Waits for no reading.
    void forget(const std::vector<xcb_window_t>& windows);

private:
    void settleList(X11DesktopSnapshot& snapshot);
    void dropForgotten();
    void keep(const std::vector<X11WindowFacts>& windows);

    std::mutex mutex_;
    std::unique_ptr<X11Connection> connection_;
    const X11Atoms& atoms_;
    X11Owners owners_;
    X11ManagerCheck managerCheck_;
    X11ListPublisher publisher_;
    /// The windows of the latest list. While a manager is being replaced there is no list for a moment, but the windows
    /// stay; the next list decides.
    std::vector<xcb_window_t> latestStacking_;
    bool keepsLastingFacts_ = false;
    X11WindowBatch::KnownWindows known_;

    /// Guards the list only. What is put in it during a reading is still there for the next one, as the reading may
    /// have asked too early.
    std::mutex forgottenMutex_;
    std::vector<xcb_window_t> forgotten_;
};

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

/// Readings come over the reader's connection on worker threads; what the main thread asks is answered by the model.
class X11WindowInventory final : public WindowInventory {
public:
    /// `scale` is device pixels a point. All references outlive this.
    X11WindowInventory(X11DesktopReader& reader, const X11DesktopModel& model, const X11ApplicationDirectory& directory,
                       const X11FocusHistory& history, const std::atomic<double>& scale)
        : reader_(reader), model_(model), directory_(directory), history_(history), scale_(scale) {}

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override;
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override;
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const override;

private:
    X11DesktopReader& reader_;
    const X11DesktopModel& model_;
    const X11ApplicationDirectory& directory_;
    const X11FocusHistory& history_;
    const std::atomic<double>& scale_;
};

}  // namespace ferrowyn
