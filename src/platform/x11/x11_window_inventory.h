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

/// The whole desktop at one moment.
struct X11DesktopSnapshot {
    /// False when the connection was lost.
    bool isValid = false;
    X11RootFacts root;
    /// Front-most first, desktop elements included.
    std::vector<X11WindowFacts> windows;
    /// How many round trips the reading took.
    int roundTrips = 0;
};

/// Reads the whole desktop in at most three round trips, however many windows there are: the root's properties, then
/// all windows, then the old forms of title and process for the few windows that have only those. Any thread; a second
/// caller waits for the first. Owned by `X11Platform`.
class X11DesktopReader {
public:
    /// Nothing else uses the connection. The atoms outlive this.
    X11DesktopReader(std::unique_ptr<X11Connection> connection, const X11Atoms& atoms);

    [[nodiscard]] X11DesktopSnapshot read();

    /// From now on keeps the facts that rarely change (owner, kind, application) from one reading to the next, which
    /// halves the requests. The caller must then call `forget` for windows whose facts may have changed.
    void keepLastingFacts();
    /// Reads everything about these windows again next time. Does not wait for a reading that is under way.
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
    /// The latest list, front-most first. It is used while a manager is being replaced and there is no list for a
    /// moment.
    std::vector<xcb_window_t> latestStacking_;
    bool keepsLastingFacts_ = false;
    X11WindowBatch::KnownWindows known_;

    /// Guards `forgotten_`. A window added during a reading stays in it for the next reading, because the current one
    /// may have read the old values.
    std::mutex forgottenMutex_;
    std::vector<xcb_window_t> forgotten_;
};

/// Answers the questions of one inventory snapshot from one reading of the desktop. Any thread; sends no requests.
class X11InventoryReading final : public InventoryReading {
public:
    /// `scale` is in device pixels per point. The directory and the history outlive this.
    X11InventoryReading(X11DesktopSnapshot snapshot, double scale, const X11ApplicationDirectory& directory,
                        const X11FocusHistory& history);

    [[nodiscard]] std::optional<std::vector<WindowServerEntry>> windowList() const override;
    [[nodiscard]] std::unordered_set<WindowId> onScreenWindowIds() const override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds messagingTimeout) const override;
    [[nodiscard]] bool hasWindowNumberLookup() const override { return true; }

    /// How many round trips the reading took.
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
    const X11FocusHistory& history_;
    std::vector<RunningApplication> applications_;
    std::unordered_map<Pid, std::vector<const X11WindowFacts*>> windowsByPid_;
    std::unordered_map<xcb_window_t, const X11WindowFacts*> windowsById_;
    /// The front-most modal dialog that blocks each window.
    std::unordered_map<xcb_window_t, const X11WindowFacts*> dialogs_;
};

/// Lists the windows. Workers call `beginReading`, which uses the reader's connection; the main thread calls the rest,
/// which the model answers without a round trip.
class X11WindowInventory final : public WindowInventory {
public:
    /// `scale` is in device pixels per point. All references outlive this.
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
