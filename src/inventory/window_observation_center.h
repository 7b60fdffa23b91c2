#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"
#include "core/posted_work.h"
#include "core/published.h"
#include "inventory/window_filter.h"
#include "platform/accessibility_observers.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"

namespace ferrowyn {

class Log;
class WindowInventory;
struct Platform;

/// A change that makes the window list out of date.
struct WindowChange {
    enum class Kind {
        /// The focused or main window of an application changed, or the application was activated.
        focus,
        /// Windows may have appeared, gone, been minimised or restored, or moved between Spaces and screens.
        structural,
        /// A title changed; the set of windows is the same.
        metadata,
    };

    Kind kind = Kind::structural;
    /// The application of a focus change; 0 otherwise.
    Pid pid = 0;

    [[nodiscard]] static constexpr WindowChange focus(Pid pid) { return {Kind::focus, pid}; }
    [[nodiscard]] static constexpr WindowChange structural() { return {Kind::structural, 0}; }
    [[nodiscard]] static constexpr WindowChange metadata() { return {Kind::metadata, 0}; }

    friend bool operator==(const WindowChange&, const WindowChange&) = default;
};

/// The fingerprint of a window list. It differs when the windows or their order differ. Compared within one run only.
struct WindowFingerprint {
    std::int64_t count = 0;
    std::int64_t hash = 0;

    /// `windowOrder` has the numbers of the window server, front-most first; an entry without a number is empty. It is
    /// absent when the server did not answer: both fields are 0 then.
    [[nodiscard]] static WindowFingerprint of(const std::optional<std::vector<std::optional<WindowId>>>& windowOrder);

    friend bool operator==(const WindowFingerprint&, const WindowFingerprint&) = default;
};

/// Watches one application and its listed windows until it is invalidated. Main thread; WindowObservationCenter owns
/// it.
class ApplicationObserver {
public:
    using ChangeHandler = std::function<void(const WindowChange&)>;

    /// Null when the application cannot be observed.
    [[nodiscard]] static std::unique_ptr<ApplicationObserver> create(AccessibilityObservers& observers, Pid pid,
                                                                     ChangeHandler onChange);
    ~ApplicationObserver();
    ApplicationObserver(const ApplicationObserver&) = delete;
    ApplicationObserver& operator=(const ApplicationObserver&) = delete;

    /// Watches exactly these windows from now on. A window that was watched before is not registered again.
    void observeWindows(std::unordered_set<AXElementRef> windows);
    /// Reports the change that the notification stands for. The handler may destroy this object.
    void handle(AccessibilityNotification notification);
    /// Ends the observation for good. Later notifications are ignored.
    void invalidate();

    static constexpr std::array<AccessibilityNotification, 6> applicationNotifications{
        AccessibilityNotification::windowCreated,     AccessibilityNotification::focusedWindowChanged,
        AccessibilityNotification::mainWindowChanged, AccessibilityNotification::applicationHidden,
        AccessibilityNotification::applicationShown,  AccessibilityNotification::applicationActivated};
    static constexpr std::array<AccessibilityNotification, 4> windowNotifications{
        AccessibilityNotification::uiElementDestroyed, AccessibilityNotification::windowMiniaturized,
        AccessibilityNotification::windowDeminiaturized, AccessibilityNotification::titleChanged};

private:
    ApplicationObserver(Pid pid, ChangeHandler onChange);

    [[nodiscard]] WindowChange changeFor(AccessibilityNotification notification) const;
    void unregister(const AXElementRef& window);

    Pid pid_;
    ChangeHandler onChange_;
    std::unique_ptr<AccessibilityObserver> observer_;
    std::unordered_set<AXElementRef> observedWindows_;
    bool isValid_ = true;
    /// For the callback, which the system may still run once after this object is destroyed.
    LifeToken life_;
};

/// Turns all notifications about applications and windows into one stream of changes, and checks every few seconds for
/// changes without a notification. Main thread; WindowIndex owns it.
class WindowObservationCenter {
public:
    WindowObservationCenter(const Platform& platform, WindowFilter filter);
    ~WindowObservationCenter();
    WindowObservationCenter(const WindowObservationCenter&) = delete;
    WindowObservationCenter& operator=(const WindowObservationCenter&) = delete;

    /// Delivered synchronously.
    [[nodiscard]] const Subject<WindowChange>& changes() const { return changes_; }

    void start();
    void stop();
    /// Takes each refreshed window list, and watches the windows that it lists.
    void synchronize(const std::vector<AppWindow>& windows);

    static constexpr Seconds revalidationInterval{5.0};

private:
    void observeApplication(Pid pid);
    void handle(const WorkspaceEvent& event);
    void revalidate();

    MainLoop& mainLoop_;
    Log& log_;
    Workspace& workspace_;
    AccessibilityObservers& accessibilityObservers_;
    const WindowInventory& windowInventory_;
    WindowFilter filter_;
    Subject<WindowChange> changes_;
    std::unordered_map<Pid, std::unique_ptr<ApplicationObserver>> observers_;
    Subscription workspaceEvents_;
    Subscription revalidationTimer_;
    std::optional<WindowFingerprint> lastFingerprint_;
    bool isRunning_ = false;
};

}  // namespace ferrowyn
