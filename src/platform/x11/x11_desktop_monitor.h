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

/// Follows the events of the root window and the listed windows, and keeps the model up to date. Only the constructor
/// waits for the server. Each event marks what has to be read again; one reading runs at a time, and changes during it
/// start the next one. Main thread; owned by `X11Platform`.
class X11DesktopMonitor {
public:
    /// The references outlive the monitor. The first reading is done when this returns.
    X11DesktopMonitor(MainLoop& mainLoop, std::unique_ptr<X11Connection> connection, const X11Atoms& atoms,
                      const X11ApplicationDirectory& directory, X11FocusHistory& history,
                      std::function<void()> onConnectionLost);
    X11DesktopMonitor(const X11DesktopMonitor&) = delete;
    X11DesktopMonitor& operator=(const X11DesktopMonitor&) = delete;

    [[nodiscard]] const X11DesktopModel& model() const { return model_; }
    /// For requests without a reply, and for the few places that may wait for one.
    [[nodiscard]] X11EventConnection& connection() { return connection_; }

    /// See `X11DesktopModel::expectActive`. The expectation ends by itself after a short time.
    void expectActive(xcb_window_t window, X11DesktopModel::Path path);
    void stopExpectingActive();
    void startSessionFrom(xcb_window_t active) { model_.startSessionFrom(active); }
    void noteInstalledApplicationsChanged() { model_.noteInstalledApplicationsChanged(); }

    /// The server's time of the latest property event on this connection; never 0.
    [[nodiscard]] xcb_timestamp_t latestServerTime() const { return latestServerTime_; }

    /// Sends the windows that are new, have changed or are gone. Facts about them that are kept elsewhere may be old.
    [[nodiscard]] const Subject<std::vector<xcb_window_t>>& windowReadings() const { return windowReadings_; }

    /// Sends a window whose icon has changed.
    [[nodiscard]] const Subject<xcb_window_t>& iconChanges() const { return iconChanges_; }

    /// Sends when the arrangement of the screens has changed.
    [[nodiscard]] const Subject<bool>& screenChanges() const { return screenChanges_; }

private:
    void subscribeToRoot();
    void readFirstTime();
    void handleEvent(const xcb_generic_event_t& event);
    void handleProperty(const xcb_property_notify_event_t& event);
    void handleDestroyed(xcb_window_t window);
    void readAgain();
    void readWindows(const X11RootFacts& root);
    void selectEvents(xcb_window_t window);
    [[nodiscard]] std::vector<xcb_window_t> windowsToRead(const X11RootFacts& root);
    [[nodiscard]] X11ManagerCheck::Requests requestManagerCheck(const X11RootFacts& root);
    void applyReading(X11RootFacts root, const X11ManagerCheck::Requests& check, std::vector<X11WindowFacts> windows);

    MainLoop& mainLoop_;
    const X11Atoms& atoms_;
    X11DesktopModel model_;
    X11EventConnection connection_;
    X11Owners owners_;
    /// Never shown. Changing its property causes an event with the server's time.
    xcb_window_t clockWindow_ = XCB_WINDOW_NONE;
    xcb_timestamp_t latestServerTime_ = 1;
    std::uint8_t randrFirstEvent_ = 0;
    bool hasRandr_ = false;

    X11ManagerCheck managerCheck_;
    X11ListPublisher publisher_;
    std::unordered_set<xcb_window_t> changedWindows_;
    /// The windows destroyed during the present reading, whose facts may be from before that.
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
