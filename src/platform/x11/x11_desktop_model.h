#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <memory>
#include <mutex>
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

/// Something that happened to an application or to one of its windows, in the terms of the Accessibility notifications.
struct X11AccessibilityNotification {
    Pid pid = 0;
    /// Absent for what the application itself announces.
    std::optional<xcb_window_t> window;
    AccessibilityNotification kind{};
};

/// Which window of each application was last the active one. The desktop monitor writes it on the main thread, snapshot
/// workers read it; safe on any thread.
class X11FocusHistory {
public:
    void note(Pid pid, xcb_window_t window) {
        const std::scoped_lock lock(mutex_);
        lastActive_[pid] = window;
    }
    void forget(xcb_window_t window) {
        const std::scoped_lock lock(mutex_);
        std::erase_if(lastActive_, [&](const auto& entry) { return entry.second == window; });
    }
    [[nodiscard]] std::optional<xcb_window_t> lastActiveOf(Pid pid) const {
        const std::scoped_lock lock(mutex_);
        const auto found = lastActive_.find(pid);
        return found == lastActive_.end() ? std::nullopt : std::optional(found->second);
    }

private:
    mutable std::mutex mutex_;
    std::unordered_map<Pid, xcb_window_t> lastActive_;
};

/// A window as the logic holds it: its XID.
class X11Element final : public AXElement {
public:
    explicit X11Element(xcb_window_t window) : window_(window) {}

    [[nodiscard]] static AXElementRef make(xcb_window_t window) {
        return AXElementRef(std::make_shared<const X11Element>(window));
    }
    /// The window of an element of this desktop.
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

/// The desktop as the main thread knows it: kept up to date by the monitor, asked without a round trip. Each update is
/// compared with what was known, and the differences are announced in the terms of the logic. Main thread; knows
/// nothing of connections.
class X11DesktopModel {
public:
    /// Both outlive the model.
    X11DesktopModel(const X11ApplicationDirectory& directory, X11FocusHistory& history)
        : directory_(directory), history_(history) {}

    /// A newer state: the root, and the facts of the windows that are new or have changed.
    void apply(const X11RootFacts& root, bool isWindowManagerRunning, std::vector<X11WindowFacts> changedWindows);
    void noteTitleChanged(xcb_window_t window);
    /// The window has been destroyed, whether or not the manager still lists it; its number may become another's.
    void forget(xcb_window_t window);
    /// Applications were installed or removed, after which windows may be of other applications than before.
    void noteInstalledApplicationsChanged();

    enum class Path {
        onOneDesktop,
        /// The manager focuses a window of its own choice first. That one's application may take the focus late, when
        /// the right window has it already: see `focusThefts`.
        acrossDesktops,
    };
    /// An activation of this window is under way. What else becomes active on the way there (the window that a manager
    /// focuses first when it switches desktops) is not the user's choice and is announced only if it stays.
    void expectActive(xcb_window_t window, Path path) { expectation_ = Expectation{.window = window, .path = path}; }
    void stopExpectingActive();
    /// A session starts while this window is the active one, which the events need not have told yet. It starts from
    /// the window that an activation under way leads to, if there is one: a second quick switch leads back.
    void startSessionFrom(xcb_window_t active);

    [[nodiscard]] bool isWindowManagerRunning() const { return isWindowManagerRunning_; }
    [[nodiscard]] bool supportsRestacking() const { return supportsRestacking_; }
    /// Those that this window's manager leaves above it although it is activated; see `X11RootFacts`.
    [[nodiscard]] std::vector<xcb_window_t> fullScreenWindowsLeftAbove(xcb_window_t window) const;
    [[nodiscard]] std::optional<std::uint32_t> currentDesktop() const { return currentDesktop_; }
    /// None while the manager says that no window is.
    [[nodiscard]] xcb_window_t activeWindow() const { return activeWindow_; }
    /// Front-most first, without desktop elements.
    [[nodiscard]] std::vector<xcb_window_t> order() const;
    [[nodiscard]] const X11WindowFacts* find(xcb_window_t window) const;
    /// Front-most first, without desktop elements.
    [[nodiscard]] std::vector<xcb_window_t> windowsOf(Pid pid) const;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid pid) const;
    /// The application of the active window (of the one that a session has just started from), or of the last one, as
    /// long as that is still there to be used: a passing None does not take the front from it.
    [[nodiscard]] std::optional<Pid> frontmostPid() const;
    [[nodiscard]] std::optional<xcb_window_t> lastActiveOf(Pid pid) const { return history_.lastActiveOf(pid); }

    [[nodiscard]] const Subject<WorkspaceEvent>& workspaceEvents() const { return workspaceEvents_; }
    [[nodiscard]] const Subject<X11AccessibilityNotification>& notifications() const { return notifications_; }
    /// The window manager came or went; the value is whether it runs.
    [[nodiscard]] const Subject<bool>& windowManagerChanges() const { return windowManagerChanges_; }
    /// Another window has taken the focus from this one, to which an activation across desktops had led. Sent once an
    /// activation; who is sent it should ask again.
    [[nodiscard]] const Subject<xcb_window_t>& focusThefts() const { return focusThefts_; }
    /// Another window has become the active one, or none, also in passing.
    [[nodiscard]] const Subject<xcb_window_t>& activeWindowChanges() const { return activeWindowChanges_; }

private:
    /// What an update brought, collected first and announced when the model is whole again.
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

    /// Looks at the active window in the light of the expectation; the window that has lost the focus, if one has.
    std::optional<xcb_window_t> reviewExpectation();
    /// True when a window has gone.
    bool removeUnlisted(Announcements& announcements);
    void announceRemoved(const Windows& windows, Announcements& announcements);
    void update(X11WindowFacts window, Windows& renamed, Announcements& announcements);
    [[nodiscard]] std::unordered_set<Pid> knownApplications() const;
    /// Gives each window the number of its application. `renamed` are the windows that now say something else about
    /// their application, as they were. Returns those that have come to an application that they were not of before.
    std::vector<xcb_window_t> numberApplications(const Windows& renamed, Announcements& announcements);
    void announceLaunchesAndWindows(const std::vector<xcb_window_t>& arrived, std::unordered_set<Pid> knownApplications,
                                    Announcements& announcements) const;
    /// Announces the end of those that have no window any more; the windows are the ones that they have lost.
    void announceTerminations(const std::unordered_map<Pid, Windows>& lost, Announcements& announcements) const;
    /// Announces what became active, unless it is a mere stage of an activation.
    void reportActive(Announcements& announcements);
    void report(const X11WindowFacts& active, Announcements& announcements);
    void send(const Announcements& announcements) const;
    [[nodiscard]] std::vector<const X11WindowFacts*> factsOf(Pid pid) const;

    const X11ApplicationDirectory& directory_;
    X11FocusHistory& history_;

    bool isWindowManagerRunning_ = false;
    bool supportsRestacking_ = false;
    bool keepsFullScreenOnTop_ = false;
    std::optional<std::uint32_t> currentDesktop_;
    xcb_window_t activeWindow_ = XCB_WINDOW_NONE;
    xcb_window_t reportedActive_ = XCB_WINDOW_NONE;
    std::optional<Pid> reportedPid_;
    std::optional<Expectation> expectation_;
    /// Newer than what the events have told, until they tell of the root window again.
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
