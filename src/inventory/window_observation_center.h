#pragma once

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"
#include "inventory/application_observer.h"
#include "inventory/window_change.h"
#include "inventory/window_filter.h"
#include "inventory/window_fingerprint.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"

namespace ferrowyn {

struct Platform;
class Log;
class WindowInventory;

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
