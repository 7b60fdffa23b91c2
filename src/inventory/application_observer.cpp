#include "inventory/application_observer.h"

#include <utility>

namespace ferrowyn {

std::unique_ptr<ApplicationObserver> ApplicationObserver::create(AccessibilityObservers& observers, Pid pid,
                                                                 ChangeHandler onChange) {
    // The constructor is private, so that no observer exists without something to observe with.
    std::unique_ptr<ApplicationObserver> created(new ApplicationObserver(pid, std::move(onChange)));
    created->observer_ = observers.create(
        pid, [target = created.get(), isAlive = std::weak_ptr(created->isAlive_)](std::string_view notification) {
            if (!isAlive.expired()) {
                target->handle(notification);
            }
        });
    if (!created->observer_) {
        return nullptr;
    }
    for (const std::string_view notification : applicationNotifications) {
        created->observer_->addApplicationNotification(notification);
    }
    return created;
}

ApplicationObserver::ApplicationObserver(Pid pid, ChangeHandler onChange) : pid_(pid), onChange_(std::move(onChange)) {}

ApplicationObserver::~ApplicationObserver() {
    invalidate();
}

void ApplicationObserver::observeWindows(std::unordered_set<AXElementRef> windows) {
    if (!isValid_) {
        return;
    }
    for (const AXElementRef& window : observedWindows_) {
        if (!windows.contains(window)) {
            unregister(window);
        }
    }
    for (const AXElementRef& window : windows) {
        if (!observedWindows_.contains(window)) {
            for (const std::string_view notification : windowNotifications) {
                observer_->addWindowNotification(window, notification);
            }
        }
    }
    observedWindows_ = std::move(windows);
}

void ApplicationObserver::handle(std::string_view notification) {
    if (!isValid_) {
        return;
    }
    // A copy: whoever is told may stop the observation and destroy this observer with it.
    const ChangeHandler onChange = onChange_;
    onChange(changeFor(notification));
}

void ApplicationObserver::invalidate() {
    if (!isValid_) {
        return;
    }
    isValid_ = false;
    if (!observer_) {
        return;
    }
    for (const AXElementRef& window : observedWindows_) {
        unregister(window);
    }
    observedWindows_.clear();
    observer_->detachFromMainLoop();
}

WindowChange ApplicationObserver::changeFor(std::string_view notification) const {
    if (notification == "AXTitleChanged") {
        return WindowChange::metadata();
    }
    if (notification == "AXFocusedWindowChanged" || notification == "AXMainWindowChanged" ||
        notification == "AXApplicationActivated") {
        return WindowChange::focus(pid_);
    }
    return WindowChange::structural();
}

void ApplicationObserver::unregister(const AXElementRef& window) {
    for (const std::string_view notification : windowNotifications) {
        observer_->removeWindowNotification(window, notification);
    }
}

}  // namespace ferrowyn
