#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string_view>
#include <unordered_set>

#include "core/app_window.h"
#include "inventory/window_change.h"
#include "platform/accessibility_observers.h"

namespace ferrowyn {

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
    std::shared_ptr<const bool> isAlive_ = std::make_shared<const bool>(true);
};

}  // namespace ferrowyn
