#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"
#include "platform/accessibility_observers.h"
#include "platform/workspace.h"
#include "platform/x11/x11_applications.h"
#include "platform/x11/x11_root_properties.h"
#include "platform/x11/x11_window_properties.h"

namespace ferrowyn {

/// A change of an application or of one of its windows, named after the matching Accessibility notification.
struct X11AccessibilityNotification {
    Pid pid = 0;
    /// nullopt when the notification is about the application.
    std::optional<xcb_window_t> window;
    AccessibilityNotification kind{};
};

/// The logic's handle of a window; holds the XID.
class X11Element final : public AXElement {
public:
    explicit X11Element(xcb_window_t window) : window_(window) {}

    [[nodiscard]] static AXElementRef make(xcb_window_t window) {
        return AXElementRef(std::make_shared<const X11Element>(window));
    }
    /// The XID; nullopt when the element is not from this adapter.
    [[nodiscard]] static std::optional<xcb_window_t> windowOf(const AXElementRef& reference) {
        const auto* const element = dynamic_cast<const X11Element*>(&reference.element());
        return element == nullptr ? std::nullopt : std::optional(element->window_);
    }

    [[nodiscard]] bool equals(const AXElement& other) const override {
        const auto* const element = dynamic_cast<const X11Element*>(&other);
        return element != nullptr && element->window_ == window_;
    }
    [[nodiscard]] std::size_t hash() const override { return std::hash<xcb_window_t>{}(window_); }

private:
    xcb_window_t window_;
};

/// The last active window of each application.
using X11FocusHistory = std::unordered_map<Pid, xcb_window_t>;

/// A copy of the whole desktop at one moment, for any thread.
struct X11DesktopSnapshot {
    /// False when the connection was lost. True for the empty snapshot of a program that ends.
    bool isValid = false;
    xcb_window_t root = XCB_WINDOW_NONE;
    std::optional<std::uint32_t> currentDesktop;
    xcb_window_t activeWindow = XCB_WINDOW_NONE;
    X11FocusHistory lastActive;
    /// Front-most first, desktop elements included.
    std::vector<X11WindowFacts> windows;
    /// How many round trips passed until the copy was current.
    int roundTrips = 0;
};

/// The one picture of the desktop. The monitor updates it; queries take no round trip, and other threads get copies
/// (`snapshot`). Each update is compared with the previous state, and the differences are announced in the logic's
/// terms. Main thread; sends no requests; owned by `X11DesktopMonitor`.
class X11DesktopModel {
public:
    /// The directory outlives the model.
    explicit X11DesktopModel(const X11ApplicationDirectory& directory) : directory_(directory) {}

    /// Updates the state: `root` replaces the root's facts, and `changedWindows` are the windows that are new or have
    /// changed.
    void apply(const X11RootFacts& root, bool isWindowManagerRunning, std::vector<X11WindowFacts> changedWindows);
    void noteTitleChanged(xcb_window_t window);
    /// Updates the facts that change often and that nothing but a snapshot asks for. Announces nothing.
    void refresh(xcb_window_t window, const X11PassingFacts& facts);
    /// Removes a destroyed window, even when the manager still lists it: its XID may be used again.
    void forget(xcb_window_t window);
    /// Applications were installed or removed, so windows may now belong to other applications.
    void noteInstalledApplicationsChanged();

    enum class Path {
        onOneDesktop,
        /// The manager focuses some window of the new desktop first. Its application may take the focus late, after the
        /// requested window got it: see `focusThefts`.
        acrossDesktops,
    };
    /// An activation of this window is under way. Another window that becomes active until then, such as the one that a
    /// manager focuses first when it switches desktops, is announced only if it stays active.
    void expectActive(xcb_window_t window, Path path) { expectation_ = Expectation{.window = window, .path = path}; }
    void stopExpectingActive();
    /// A session starts while `active` is the active window; the event for that may not have arrived yet. When an
    /// activation is under way, the session starts from its window, so that a second quick switch leads back.
    void startSessionFrom(xcb_window_t active);

    [[nodiscard]] bool isWindowManagerRunning() const { return isWindowManagerRunning_; }
    [[nodiscard]] bool supportsRestacking() const { return supportsRestacking_; }
    /// The full-screen windows that the manager keeps above this window when it is activated; see
    /// `X11RootFacts::keepsFullScreenOnTop`.
    [[nodiscard]] std::vector<xcb_window_t> fullScreenWindowsLeftAbove(xcb_window_t window) const;
    [[nodiscard]] std::optional<std::uint32_t> currentDesktop() const { return currentDesktop_; }
    /// None while no window is active.
    [[nodiscard]] xcb_window_t activeWindow() const { return activeWindow_; }
    /// Valid; the round trips are for the caller to fill in.
    [[nodiscard]] X11DesktopSnapshot snapshot() const;
    /// Front-most first, without desktop elements.
    [[nodiscard]] std::vector<xcb_window_t> order() const;
    [[nodiscard]] const X11WindowFacts* find(xcb_window_t window) const;
    /// Front-most first, without desktop elements.
    [[nodiscard]] std::vector<xcb_window_t> windowsOf(Pid pid) const;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid pid) const;
    /// The application of the window that a session has just started from, or of the active window. While no window is
    /// active, the application of the last active one, as long as that window is visible on this desktop: managers set
    /// None for a moment.
    [[nodiscard]] std::optional<Pid> frontmostPid() const;
    [[nodiscard]] std::optional<xcb_window_t> lastActiveOf(Pid pid) const;

    [[nodiscard]] const Subject<WorkspaceEvent>& workspaceEvents() const { return workspaceEvents_; }
    [[nodiscard]] const Subject<X11AccessibilityNotification>& notifications() const { return notifications_; }
    /// Sends whether a window manager runs, when that changes.
    [[nodiscard]] const Subject<bool>& windowManagerChanges() const { return windowManagerChanges_; }
    /// Sends the requested window of an activation across desktops when another window has taken the focus from it. At
    /// most once for each activation; the observer should request the activation again.
    [[nodiscard]] const Subject<xcb_window_t>& focusThefts() const { return focusThefts_; }
    /// Sends each new active window, None included, also when it is active only for a moment.
    [[nodiscard]] const Subject<xcb_window_t>& activeWindowChanges() const { return activeWindowChanges_; }

private:
    /// The announcements of one update. They are sent when the update is complete, so that observers see the new state.
    struct Announcements {
        std::vector<WorkspaceEvent> workspaceEvents;
        std::vector<X11AccessibilityNotification> notifications;
    };
    using Windows = std::vector<X11WindowFacts>;

    struct Expectation {
        xcb_window_t window;
        Path path;
        bool isReached = false;
    };

    /// Compares the active window with the expectation. Returns the expected window when it has lost the focus.
    std::optional<xcb_window_t> reviewExpectation();
    /// True when at least one window was removed.
    bool removeUnlisted(Announcements& announcements);
    void announceRemoved(const Windows& windows, Announcements& announcements);
    void update(X11WindowFacts window, Windows& renamed, Announcements& announcements);
    void forgetFocusOf(xcb_window_t window);
    [[nodiscard]] std::unordered_set<Pid> knownApplications() const;
    /// Gives each window the number of its application. `renamed` are the earlier facts of the windows whose identity
    /// has changed. Returns the windows that are new in their application.
    std::vector<xcb_window_t> numberApplications(const Windows& renamed, Announcements& announcements);
    void announceLaunchesAndWindows(const std::vector<xcb_window_t>& arrived, std::unordered_set<Pid> knownApplications,
                                    Announcements& announcements) const;
    /// Announces the end of each application that has no window left. `lost` are the windows that it had before.
    void announceTerminations(const std::unordered_map<Pid, Windows>& lost, Announcements& announcements) const;
    /// Announces the active window, unless an activation of another window is under way.
    void reportActive(Announcements& announcements);
    void report(const X11WindowFacts& active, Announcements& announcements);
    void send(const Announcements& announcements) const;
    [[nodiscard]] std::vector<const X11WindowFacts*> factsOf(Pid pid) const;

    const X11ApplicationDirectory& directory_;
    X11FocusHistory lastActive_;

    xcb_window_t root_ = XCB_WINDOW_NONE;
    bool isWindowManagerRunning_ = false;
    bool supportsRestacking_ = false;
    bool keepsFullScreenOnTop_ = false;
    std::optional<std::uint32_t> currentDesktop_;
    xcb_window_t activeWindow_ = XCB_WINDOW_NONE;
    xcb_window_t reportedActive_ = XCB_WINDOW_NONE;
    std::optional<Pid> reportedPid_;
    std::optional<Expectation> expectation_;
    /// The active window when the session started. Newer than `activeWindow_` until the next update.
    std::optional<xcb_window_t> sessionStart_;
    /// Front-most first, desktop elements included.
    std::vector<xcb_window_t> order_;
    std::unordered_map<xcb_window_t, X11WindowFacts> windows_;

    Subject<WorkspaceEvent> workspaceEvents_;
    Subject<X11AccessibilityNotification> notifications_;
    Subject<bool> windowManagerChanges_;
    Subject<xcb_window_t> focusThefts_;
    Subject<xcb_window_t> activeWindowChanges_;
};

}  // namespace ferrowyn
