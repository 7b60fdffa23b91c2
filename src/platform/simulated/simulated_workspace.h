#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/published.h"
#include "platform/accessibility_observers.h"
#include "platform/simulated/simulated_window_model.h"
#include "platform/workspace.h"

namespace ferrowyn {

class SimulatedWorkspace final : public Workspace {
public:
    /// Addresses that are opened are added to `calls` as "open <url>", pages of the settings as "settings <page>".
    SimulatedWorkspace(const SimulatedWindowModel& model, std::vector<std::string>& calls)
        : model_(model), calls_(calls) {}

    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid pid) const override;
    [[nodiscard]] std::optional<Pid> frontmostPid() const override { return model_.frontmost; }
    [[nodiscard]] Subscription observe(EventHandler handler) override { return events_.subscribe(std::move(handler)); }
    [[nodiscard]] std::optional<std::string> installedApplicationName(std::string_view bundleIdentifier) const override;
    /// "/Applications/<identifier>.app" for an application whose name was set.
    [[nodiscard]] std::optional<std::string> installedApplicationPath(std::string_view bundleIdentifier) const override;
    bool open(std::string_view url) override;
    bool openSettings(SettingsPage page) override;

    void announce(const WorkspaceEvent& event) { events_.send(event); }
    [[nodiscard]] bool isObserved() const { return events_.hasSubscribers(); }
    void setInstalledApplicationName(std::string bundleIdentifier, std::optional<std::string> name);

private:
    const SimulatedWindowModel& model_;
    std::vector<std::string>& calls_;
    Subject<WorkspaceEvent> events_;
    std::map<std::string, std::optional<std::string>, std::less<>> installedNames_;
};

/// Creates observers and remembers what each registered, also after it is destroyed, so that a test can deliver a late
/// notification.
class SimulatedAccessibilityObservers final : public AccessibilityObservers {
public:
    explicit SimulatedAccessibilityObservers(const SimulatedWindowModel& model) : model_(model) {}

    /// Null for an application that is unobservable or not running.
    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) override;

    /// Delivers to the observers that registered the notification for the application, or for the window.
    void announceForApplication(Pid pid, AccessibilityNotification notification);
    void announceForWindow(WindowId id, AccessibilityNotification notification);
    /// Delivers to every observer of the application, registered or not.
    void notify(Pid pid, AccessibilityNotification notification);
    /// Delivers once more to the observers of the application that are detached or destroyed.
    void notifyLate(Pid pid, AccessibilityNotification notification);

    [[nodiscard]] std::vector<AccessibilityNotification> windowNotifications(WindowId id) const;
    [[nodiscard]] std::vector<AccessibilityNotification> applicationNotifications(Pid pid) const;
    [[nodiscard]] std::size_t liveCount() const;

    struct Registration {
        Pid pid = 0;
        Handler handler;
        bool isAttached = true;
        std::vector<AccessibilityNotification> applicationNotifications;
        std::map<WindowId, std::vector<AccessibilityNotification>> windowNotifications;
    };

private:
    template <typename Predicate>
    void deliver(AccessibilityNotification notification, Predicate wants);

    const SimulatedWindowModel& model_;
    std::vector<std::shared_ptr<Registration>> registrations_;
};

}  // namespace ferrowyn
