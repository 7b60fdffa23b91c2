#pragma once

#include <functional>
#include <memory>

#include "core/app_window.h"

namespace ferrowyn {

/// What an application tells about itself and its windows, named after the notifications of macOS. An adapter for
/// another system tells what amounts to the same.
enum class AccessibilityNotification {
    // of the application
    windowCreated,
    focusedWindowChanged,
    mainWindowChanged,
    applicationHidden,
    applicationShown,
    applicationActivated,
    // of a window
    uiElementDestroyed,
    windowMiniaturized,
    windowDeminiaturized,
    titleChanged,
};

/// Delivers the Accessibility notifications of one application. Destroying it ends them. Main thread.
class AccessibilityObserver {
public:
    virtual ~AccessibilityObserver() = default;

    /// Registers a notification of the application element. The adapter logs a refusal.
    virtual void addApplicationNotification(AccessibilityNotification notification) = 0;
    virtual void addWindowNotification(const AXElementRef& window, AccessibilityNotification notification) = 0;
    virtual void removeWindowNotification(const AXElementRef& window, AccessibilityNotification notification) = 0;
    /// Ends the delivery for good (removes the run-loop source).
    virtual void detachFromMainLoop() = 0;
};

class AccessibilityObservers {
public:
    virtual ~AccessibilityObservers() = default;

    /// Called with the notification, on the main thread. May be called once more after the observer was
    /// detached.
    using Handler = std::function<void(AccessibilityNotification notification)>;

    /// Null when the application cannot be observed. Main thread.
    [[nodiscard]] virtual std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) = 0;
};

}  // namespace ferrowyn
