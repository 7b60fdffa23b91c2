#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/accessibility_observers.h"
#include "platform/simulated/simulated_window_model.h"

namespace ferrowyn {

/// Makes observers and remembers what each registered, also after it is gone, so that a notification that was already
/// on its way can still arrive.
class SimulatedAccessibilityObservers final : public AccessibilityObservers {
public:
    explicit SimulatedAccessibilityObservers(const SimulatedWindowModel& model) : model_(model) {}

    /// Null for an application that is unobservable or not running.
    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) override;

    /// To the observers that registered it with the application, or with the window.
    void announceForApplication(Pid pid, std::string_view notification);
    void announceForWindow(WindowId id, std::string_view notification);
    /// To every observer of the application, whatever it registered.
    void notify(Pid pid, std::string_view notification);
    /// To the observers of the application that are detached or destroyed, one last time.
    void notifyLate(Pid pid, std::string_view notification);

    [[nodiscard]] std::vector<std::string> windowNotifications(WindowId id) const;
    [[nodiscard]] std::vector<std::string> applicationNotifications(Pid pid) const;
    [[nodiscard]] std::size_t liveCount() const;

    struct Registration {
        Pid pid = 0;
        Handler handler;
        bool isAttached = true;
        std::vector<std::string> applicationNotifications;
        std::map<WindowId, std::vector<std::string>> windowNotifications;
    };

private:
    template <typename Predicate>
    void deliver(std::string_view notification, Predicate wants);

    const SimulatedWindowModel& model_;
    std::vector<std::shared_ptr<Registration>> registrations_;
};

}  // namespace ferrowyn
