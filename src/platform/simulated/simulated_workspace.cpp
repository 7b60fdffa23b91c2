#include "platform/simulated/simulated_workspace.h"

#include <algorithm>
#include <utility>

namespace ferrowyn {

std::vector<RunningApplication> SimulatedWorkspace::runningApplications() const {
    std::vector<RunningApplication> applications;
    applications.reserve(model_.apps.size());
    for (const auto& app : model_.apps) {
        applications.push_back(app.describe());
    }
    return applications;
}

std::optional<RunningApplication> SimulatedWorkspace::runningApplication(Pid pid) const {
    const auto* app = model_.app(pid);
    return app != nullptr ? std::optional(app->describe()) : std::nullopt;
}

std::optional<std::string> SimulatedWorkspace::installedApplicationName(std::string_view bundleIdentifier) const {
    const auto found = installedNames_.find(bundleIdentifier);
    return found != installedNames_.end() ? found->second : std::nullopt;
}

std::optional<std::string> SimulatedWorkspace::installedApplicationPath(std::string_view bundleIdentifier) const {
    const bool isInstalled = installedNames_.contains(bundleIdentifier);
    return isInstalled ? std::optional("/Applications/" + std::string(bundleIdentifier) + ".app") : std::nullopt;
}

bool SimulatedWorkspace::open(std::string_view url) {
    calls_.push_back("open " + std::string(url));
    return true;
}

bool SimulatedWorkspace::openSettings(SettingsPage page) {
    calls_.emplace_back(page == SettingsPage::accessibility ? "settings accessibility" : "settings loginItems");
    return true;
}

void SimulatedWorkspace::setInstalledApplicationName(std::string bundleIdentifier, std::optional<std::string> name) {
    installedNames_.insert_or_assign(std::move(bundleIdentifier), std::move(name));
}

namespace {

using Registration = SimulatedAccessibilityObservers::Registration;

class SimulatedAccessibilityObserver final : public AccessibilityObserver {
public:
    explicit SimulatedAccessibilityObserver(std::shared_ptr<Registration> registration)
        : registration_(std::move(registration)) {}
    ~SimulatedAccessibilityObserver() override { forget(); }
    SimulatedAccessibilityObserver(const SimulatedAccessibilityObserver&) = delete;
    SimulatedAccessibilityObserver& operator=(const SimulatedAccessibilityObserver&) = delete;

    void addApplicationNotification(AccessibilityNotification notification) override {
        registration_->applicationNotifications.push_back(notification);
    }
    void addWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override {
        registration_->windowNotifications[SimulatedElement::idOf(window)].push_back(notification);
    }
    void removeWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override {
        auto& registered = registration_->windowNotifications[SimulatedElement::idOf(window)];
        // Removes only one, so that a test notices a notification that was registered twice.
        if (const auto found = std::ranges::find(registered, notification); found != registered.end()) {
            registered.erase(found);
        }
    }
    void detachFromMainLoop() override { registration_->isAttached = false; }

private:
    void forget() {
        registration_->isAttached = false;
        registration_->applicationNotifications.clear();
        registration_->windowNotifications.clear();
    }

    std::shared_ptr<Registration> registration_;
};

bool contains(const std::vector<AccessibilityNotification>& registered, AccessibilityNotification notification) {
    return std::ranges::find(registered, notification) != registered.end();
}

}  // namespace

std::unique_ptr<AccessibilityObserver> SimulatedAccessibilityObservers::create(Pid pid, Handler handler) {
    const auto* app = model_.app(pid);
    if (app == nullptr || app->isUnobservable) {
        return nullptr;
    }
    registrations_.push_back(std::make_shared<Registration>(Registration{pid, std::move(handler), true, {}, {}}));
    return std::make_unique<SimulatedAccessibilityObserver>(registrations_.back());
}

void SimulatedAccessibilityObservers::announceForApplication(Pid pid, AccessibilityNotification notification) {
    deliver(notification, [&](const Registration& registration) {
        return registration.isAttached && registration.pid == pid &&
               contains(registration.applicationNotifications, notification);
    });
}

void SimulatedAccessibilityObservers::announceForWindow(WindowId id, AccessibilityNotification notification) {
    deliver(notification, [&](const Registration& registration) {
        const auto registered = registration.windowNotifications.find(id);
        return registration.isAttached && registered != registration.windowNotifications.end() &&
               contains(registered->second, notification);
    });
}

void SimulatedAccessibilityObservers::notify(Pid pid, AccessibilityNotification notification) {
    deliver(notification,
            [&](const Registration& registration) { return registration.isAttached && registration.pid == pid; });
}

void SimulatedAccessibilityObservers::notifyLate(Pid pid, AccessibilityNotification notification) {
    const auto isGone = [&](const auto& registration) { return !registration->isAttached && registration->pid == pid; };
    std::vector<std::shared_ptr<Registration>> gone;
    std::ranges::copy_if(registrations_, std::back_inserter(gone), isGone);
    std::erase_if(registrations_, isGone);
    for (const auto& registration : gone) {
        registration->handler(notification);
    }
}

std::vector<AccessibilityNotification> SimulatedAccessibilityObservers::windowNotifications(WindowId id) const {
    std::vector<AccessibilityNotification> all;
    for (const auto& registration : registrations_) {
        const auto registered = registration->windowNotifications.find(id);
        if (registered != registration->windowNotifications.end()) {
            all.insert(all.end(), registered->second.begin(), registered->second.end());
        }
    }
    return all;
}

std::vector<AccessibilityNotification> SimulatedAccessibilityObservers::applicationNotifications(Pid pid) const {
    std::vector<AccessibilityNotification> all;
    for (const auto& registration : registrations_) {
        if (registration->pid == pid) {
            all.insert(all.end(), registration->applicationNotifications.begin(),
                       registration->applicationNotifications.end());
        }
    }
    return all;
}

std::size_t SimulatedAccessibilityObservers::liveCount() const {
    return static_cast<std::size_t>(
        std::ranges::count_if(registrations_, [](const auto& registration) { return registration->isAttached; }));
}

template <typename Predicate>
void SimulatedAccessibilityObservers::deliver(AccessibilityNotification notification, Predicate wants) {
    // A copy, because a handler may make or drop observers.
    const auto current = registrations_;
    for (const auto& registration : current) {
        if (wants(*registration)) {
            registration->handler(notification);
        }
    }
}

}  // namespace ferrowyn
