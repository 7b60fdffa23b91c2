#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>
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

/// Passes on which windows have changed their titles: those of all windows together, twice a second at most. A refresh
/// of the window list waits until changes pause, so a page that shows its progress in its title would otherwise keep a
/// new window from being listed. Main thread.
class X11TitleChanges {
public:
    /// A client sets two properties for one title.
    static constexpr Seconds gatheringTime{0.05};
    static constexpr Seconds interval{0.5};

    /// `tell` is called for each window that has changed since it was told of. The loop outlives this.
    X11TitleChanges(MainLoop& mainLoop, std::function<void(xcb_window_t)> tell);

    void note(xcb_window_t window);

private:
    void tellAll();

    MainLoop& mainLoop_;
    std::function<void(xcb_window_t)> tell_;
    std::vector<xcb_window_t> changed_;
    std::optional<TimePoint> lastTold_;
    Subscription timer_;
};

/// Listens to the window manager and to the listed windows, and keeps the model up to date. Main thread. After the
/// first reading, which waits, nothing here waits for the server: changes mark what is to be read again, one reading is
/// under way at a time, and what changes meanwhile is read next. A manager that is replaced is simply read again.
class X11DesktopMonitor {
public:
    /// The references outlive the monitor. The first reading is done when this returns.
    X11DesktopMonitor(MainLoop& mainLoop, std::unique_ptr<X11Connection> connection, const X11Atoms& atoms,
                      const X11ApplicationDirectory& directory, X11FocusHistory& history,
                      std::function<void()> onConnectionLost);
    X11DesktopMonitor(const X11DesktopMonitor&) = delete;
    X11DesktopMonitor& operator=(const X11DesktopMonitor&) = delete;

    [[nodiscard]] const X11DesktopModel& model() const { return model_; }
    /// For requests that need no answer, and for readings that may wait.
    [[nodiscard]] X11EventConnection& connection() { return connection_; }

    /// See `X11DesktopModel::expectActive`; ends by itself after a moment.
    void expectActive(xcb_window_t window, X11DesktopModel::Path path);
    void stopExpectingActive();
    void startSessionFrom(xcb_window_t active) { model_.startSessionFrom(active); }
    void noteInstalledApplicationsChanged() { model_.noteInstalledApplicationsChanged(); }

    /// The server's time at the latest event seen here; never 0.
    [[nodiscard]] xcb_timestamp_t latestServerTime() const { return latestServerTime_; }

    /// These windows are new, have changed, or are gone; what others knew of them may be old.
    [[nodiscard]] const Subject<std::vector<xcb_window_t>>& windowReadings() const { return windowReadings_; }

    /// The window carries another icon from now on.
    [[nodiscard]] const Subject<xcb_window_t>& iconChanges() const { return iconChanges_; }

    /// The arrangement of the screens changed.
    [[nodiscard]] const Subject<bool>& screenChanges() const { return screenChanges_; }

private:
    void subscribeToRoot();
    void readFirstTime();
    void handleEvent(const xcb_generic_event_t& event);
    void handleProperty(const xcb_property_notify_event_t& event);
    void handleDestroyed(xcb_window_t window);
    void readAgain();
    void readWindows(const X11RootFacts& root);
    void listenTo(xcb_window_t window);
    [[nodiscard]] std::vector<xcb_window_t> windowsToRead(const X11RootFacts& root);
    [[nodiscard]] X11ManagerCheck::Requests requestManagerCheck(const X11RootFacts& root);
    void applyReading(X11RootFacts root, const X11ManagerCheck::Requests& check, std::vector<X11WindowFacts> windows);

    MainLoop& mainLoop_;
    const X11Atoms& atoms_;
    X11DesktopModel model_;
    X11EventConnection connection_;
    X11Owners owners_;
    /// Never shown; a change to it makes the server tell its time.
    xcb_window_t clockWindow_ = XCB_WINDOW_NONE;
    xcb_timestamp_t latestServerTime_ = 1;
    std::uint8_t randrFirstEvent_ = 0;
    bool hasRandr_ = false;

    X11ManagerCheck managerCheck_;
    X11ListPublisher publisher_;
    std::unordered_set<xcb_window_t> changedWindows_;
    /// Since the reading under way began: what it says of them may be of before their end.
    std::unordered_set<xcb_window_t> destroyedMeanwhile_;
    bool isRootChanged_ = false;
    bool isReading_ = false;
    Subscription expectation_;
    X11TitleChanges titleChanges_;
    Subject<std::vector<xcb_window_t>> windowReadings_;
    Subject<xcb_window_t> iconChanges_;
    Subject<bool> screenChanges_;
};

}  // namespace ferrowyn
