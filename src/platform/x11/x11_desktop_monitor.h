#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/published.h"
#include "platform/main_loop.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_owners.h"
#include "platform/x11/x11_root_properties.h"
#include "platform/x11/x11_window_properties.h"

namespace ferrowyn {

/// Collects title changes and reports them at most twice a second. A refresh of the window list waits until changes
/// pause, so a window that changes its title all the time would otherwise delay the listing of new windows. Main
/// thread; owned by `X11DesktopMonitor`.
class X11TitleChanges {
public:
    /// A client sets two properties for one title, so the first change is reported a moment later.
    static constexpr Seconds gatheringTime{0.05};
    static constexpr Seconds interval{0.5};

    /// `onChange` is called for each window whose title has changed since the last report. The loop outlives this.
    X11TitleChanges(MainLoop& mainLoop, std::function<void(xcb_window_t)> onChange);

    void note(xcb_window_t window);

private:
    void reportAll();

    MainLoop& mainLoop_;
    std::function<void(xcb_window_t)> onChange_;
    std::vector<xcb_window_t> changed_;
    std::optional<TimePoint> lastReport_;
    Subscription timer_;
};

/// Allows a burst of readings of changed windows, and after that only a few a second. Each reading may announce a
/// change, and a refresh of the window list waits until changes pause: a window that changes its properties all the
/// time would otherwise delay the listing of new windows. Readings for a snapshot do not wait, because the snapshot
/// must be current. So such a window is read, and the list refreshed, as often as pauses between the announcements
/// allow: up to eight times a second. Main thread; owned by `X11DesktopMonitor`.
class X11ReadingLimit {
public:
    /// More than a window manager needs when it changes many windows one after the other.
    static constexpr int burst = 16;
    /// Longer than the pause that a refresh waits for.
    static constexpr Seconds interval{0.25};

    /// The loop outlives this.
    explicit X11ReadingLimit(const MainLoop& mainLoop) : mainLoop_(mainLoop), refilled_(mainLoop.now()) {}

    /// How long the next reading has to wait. When it need not, the reading counts as begun.
    [[nodiscard]] Seconds begin();
    /// A reading that does not wait has begun. It uses up the limit too, but never delays the next one by more than the
    /// interval.
    void noteUnlimited();

private:
    const MainLoop& mainLoop_;
    int left_ = burst;
    /// Until here the passed intervals have been added to `left_`.
    TimePoint refilled_;
};

/// Follows the events of the root window and the listed windows, and keeps the model up to date. Only the constructor
/// waits for the server. Each event marks what has to be read again: most facts at once, in one reading at a time,
/// where changes during it start the next one; titles, sizes and the mapping only for the next snapshot. Main thread;
/// owned by `X11Platform`.
class X11DesktopMonitor {
public:
    /// The references outlive the monitor. The first reading is done when this returns.
    X11DesktopMonitor(MainLoop& mainLoop, X11EventConnection& events, const X11Atoms& atoms,
                      const X11ApplicationDirectory& directory);
    X11DesktopMonitor(const X11DesktopMonitor&) = delete;
    X11DesktopMonitor& operator=(const X11DesktopMonitor&) = delete;

    [[nodiscard]] const X11DesktopModel& model() const { return model_; }
    /// For requests without a reply, and for the few places that may wait for one.
    [[nodiscard]] X11EventConnection& connection() { return events_; }

    /// Calls the handler with a copy of the model that has every change that the server had made when this was called.
    /// It asks for the windows' positions and for what has changed. That takes one round trip, and a few more where
    /// events that came with the answer have told of further changes. It does not wait for later changes, so a window
    /// that changes all the time does not delay it. Not called when the connection is lost first.
    void takeSnapshot(std::function<void(X11DesktopSnapshot)> handler);

    /// See `X11DesktopModel::expectActive`. The expectation ends by itself after a short time.
    void expectActive(xcb_window_t window, X11DesktopModel::Path path);
    void stopExpectingActive();
    void startSessionFrom(xcb_window_t active) { model_.startSessionFrom(active); }
    void noteInstalledApplicationsChanged() { model_.noteInstalledApplicationsChanged(); }

    /// The server's time of the latest property event on this connection; never 0.
    [[nodiscard]] xcb_timestamp_t latestServerTime() const { return latestServerTime_; }

    /// Sends a window whose icon has changed.
    [[nodiscard]] const Subject<xcb_window_t>& iconChanges() const { return iconChanges_; }

    /// Sends when the arrangement of the screens has changed.
    [[nodiscard]] const Subject<bool>& screenChanges() const { return screenChanges_; }

private:
    /// A snapshot that waits for readings of the changes from before it.
    struct PendingSnapshot {
        std::function<void(X11DesktopSnapshot)> handler;
        /// The windows whose positions were asked for when the snapshot was. Others have been listed since, and may
        /// have been read before that.
        std::unordered_set<xcb_window_t> placed;
        int readingsLeft = 0;
        int roundTrips = 0;
    };

    void makeClock();
    void readFirstTime();
    void handleEvent(const xcb_generic_event_t& event);
    void handleProperty(const xcb_property_notify_event_t& event);
    void handleDestroyed(xcb_window_t window);
    [[nodiscard]] bool isAnythingChanged() const { return isRootChanged_ || !changedWindows_.empty(); }
    void readAgain();
    /// Whether the limit allows a reading now, which then counts as begun. Otherwise `readAgain` is called later.
    [[nodiscard]] bool mayReadNow();
    void readWindows(const X11RootFacts& root);
    [[nodiscard]] std::vector<xcb_window_t> windowsToRead(const X11RootFacts& root);
    [[nodiscard]] X11ManagerCheck::Requests requestManagerCheck(const X11RootFacts& root);
    void applyReading(X11RootFacts root, const X11ManagerCheck::Requests& check, std::vector<X11WindowFacts> windows);
    /// Asks for the marked facts, and for the positions of all windows but those in `placed`.
    [[nodiscard]] std::vector<X11PassingRequests> requestPassingFacts(const std::unordered_set<xcb_window_t>& placed);
    /// Calls `then` when the model has the answers.
    void askPassingFacts(std::vector<X11PassingRequests> requests, std::function<void()> then);
    /// Counts the reading that has just ended, and takes out the snapshots that have waited for it.
    [[nodiscard]] std::vector<PendingSnapshot> takeReadySnapshots();
    void finish(PendingSnapshot snapshot);

    MainLoop& mainLoop_;
    X11EventConnection& events_;
    const X11Atoms& atoms_;
    X11DesktopModel model_;
    X11Owners owners_;
    /// Never shown. Changing its property causes an event with the server's time.
    xcb_window_t clockWindow_ = XCB_WINDOW_NONE;
    xcb_timestamp_t latestServerTime_ = 1;

    X11ManagerCheck managerCheck_;
    X11ListPublisher publisher_;
    bool supportsHiddenState_ = false;
    std::unordered_set<xcb_window_t> changedWindows_;
    /// The facts to ask for again, as flags of `X11PassingRequests::Part`.
    std::unordered_map<xcb_window_t, std::uint8_t> changedParts_;
    /// The windows destroyed during the present reading, whose facts may be from before that.
    std::unordered_set<xcb_window_t> destroyedMeanwhile_;
    bool isRootChanged_ = false;
    bool isReading_ = false;
    X11ReadingLimit limit_;
    Subscription limitEnd_;
    std::vector<PendingSnapshot> pendingSnapshots_;
    /// How many calls of `askPassingFacts` have no answer yet.
    int passingAnswersToCome_ = 0;
    Subscription expectation_;
    X11TitleChanges titleChanges_;
    Subject<xcb_window_t> iconChanges_;
    Subject<bool> screenChanges_;
    Subscription eventSubscription_;
};

}  // namespace ferrowyn
