#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "core/app_window.h"

namespace ferrowyn {

/// Watches one application's Accessibility interface; destroying it ends the watching. Main thread.
class AccessibilityObserver {
public:
    virtual ~AccessibilityObserver() = default;

    /// Notifications of the application element; a refusal is the adapter's to log.
    virtual void addApplicationNotification(std::string_view notification) = 0;
    virtual void addWindowNotification(const AXElementRef& window, std::string_view notification) = 0;
    virtual void removeWindowNotification(const AXElementRef& window, std::string_view notification) = 0;
    /// Delivers nothing any more (the run-loop source is gone).
    virtual void detachFromMainLoop() = 0;
};

class AccessibilityObservers {
public:
    virtual ~AccessibilityObservers() = default;

    /// Gets the notification's name, on the main thread. May still be called once after the observer detached.
    using Handler = std::function<void(std::string_view notification)>;

    /// Null when the application cannot be observed. Main thread.
    [[nodiscard]] virtual std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) = 0;
};

}  // namespace ferrowyn
