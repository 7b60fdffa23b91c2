#include "platform/x11/x11_accessibility_observers.h"

#include <set>
#include <string>
#include <unordered_map>
#include <utility>

#include "platform/x11/x11_element.h"

namespace ferrowyn {
namespace {

class X11AccessibilityObserver final : public AccessibilityObserver {
public:
    X11AccessibilityObserver(Pid pid, AccessibilityObservers::Handler handler, const X11DesktopModel& model)
        : pid_(pid), handler_(std::move(handler)) {
        subscription_ = model.notifications().subscribe([this](const auto& notification) { receive(notification); });
    }

    void addApplicationNotification(std::string_view notification) override {
        applicationNotifications_.emplace(notification);
    }
    void addWindowNotification(const AXElementRef& window, std::string_view notification) override {
        if (const auto id = X11Element::windowOf(window)) {
            windowNotifications_[*id].emplace(notification);
        }
    }
    void removeWindowNotification(const AXElementRef& window, std::string_view notification) override {
        const auto id = X11Element::windowOf(window);
        const auto found = id ? windowNotifications_.find(*id) : windowNotifications_.end();
        if (found == windowNotifications_.end()) {
            return;
        }
        found->second.erase(std::string(notification));
        if (found->second.empty()) {
            windowNotifications_.erase(found);
        }
    }
    void detachFromMainLoop() override { subscription_.reset(); }

private:
    void receive(const X11AccessibilityNotification& notification) {
        if (notification.pid == pid_ && isWanted(notification)) {
            // A copy: the handler may destroy this observer.
            const auto handler = handler_;
            handler(notification.name);
        }
    }

    [[nodiscard]] bool isWanted(const X11AccessibilityNotification& notification) const {
        const std::string name(notification.name);
        if (!notification.window) {
            return applicationNotifications_.contains(name);
        }
        const auto window = windowNotifications_.find(*notification.window);
        if (window != windowNotifications_.end()) {
            return window->second.contains(name);
        }
        // A window that ended before anybody could register for it is told about all the same: the snapshot that was
        // under way may still list it.
        return notification.name == "AXUIElementDestroyed";
    }

    Pid pid_;
    AccessibilityObservers::Handler handler_;
    std::set<std::string> applicationNotifications_;
    std::unordered_map<xcb_window_t, std::set<std::string>> windowNotifications_;
    Subscription subscription_;
};

}  // namespace

std::unique_ptr<AccessibilityObserver> X11AccessibilityObservers::create(Pid pid, Handler handler) {
    if (!model_.runningApplication(pid)) {
        return nullptr;
    }
    return std::make_unique<X11AccessibilityObserver>(pid, std::move(handler), model_);
}

}  // namespace ferrowyn
