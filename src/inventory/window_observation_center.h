#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
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

/// Something that makes the window list out of date.
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

/// Tells two window lists apart, by their windows and by their order. Compared within one run only.
struct WindowFingerprint {
    std::int64_t count = 0;
    std::int64_t hash = 0;

    /// Of the window server's numbers, front-most first, an entry without a number as nothing; both fields are 0 when
    /// the server did not answer.
    [[nodiscard]] static WindowFingerprint of(const std::optional<std::vector<std::optional<WindowId>>>& windowOrder);

    friend bool operator==(const WindowFingerprint&, const WindowFingerprint&) = default;
};

/// Watches one application and its listed windows until it is invalidated, for good. Main thread.
class ApplicationObserver {
public:
    using ChangeHandler = std::function<void(const WindowChange&)>;

    /// Null when the application cannot be observed.
    [[nodiscard]] static std::unique_ptr<ApplicationObserver> create(AccessibilityObservers& observers, Pid pid,
                                                                     ChangeHandler onChange);
    ~ApplicationObserver();
    ApplicationObserver(const ApplicationObserver&) = delete;
    ApplicationObserver& operator=(const ApplicationObserver&) = delete;

    /// Watches exactly these windows from now on; each stays registered once for as long as it is among them.
    void observeWindows(std::unordered_set<AXElementRef> windows);
    /// Tells of the change that the notification stands for. May end this object's life.
    void handle(std::string_view notification);
    /// Ends the watching. A notification that is still on its way will be ignored.
    void invalidate();

    static constexpr std::array<std::string_view, 6> applicationNotifications{
        "AXWindowCreated",     "AXFocusedWindowChanged", "AXMainWindowChanged",
        "AXApplicationHidden", "AXApplicationShown",     "AXApplicationActivated"};
    static constexpr std::array<std::string_view, 4> windowNotifications{"AXUIElementDestroyed", "AXWindowMiniaturized",
                                                                         "AXWindowDeminiaturized", "AXTitleChanged"};

private:
    ApplicationObserver(Pid pid, ChangeHandler onChange);

    [[nodiscard]] WindowChange changeFor(std::string_view notification) const;
    void unregister(const AXElementRef& window);

    Pid pid_;
    ChangeHandler onChange_;
    std::unique_ptr<AccessibilityObserver> observer_;
    std::unordered_set<AXElementRef> observedWindows_;
    bool isValid_ = true;
    /// Held weakly by the callback, which the system may still run once after this object is gone.
    LifeToken life_;
};

/// Turns everything that the desktop tells about applications and windows into one stream of changes, and looks every
/// few seconds for what nobody told. Main thread.
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
    /// Takes each refreshed window list: the listed windows are the ones that are watched.
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
