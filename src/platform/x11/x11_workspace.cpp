#include "platform/x11/x11_workspace.h"

#include <fmt/format.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QSysInfo>
#include <QUrl>
#include <QVersionNumber>
#include <algorithm>
#include <set>
#include <unordered_map>
#include <utility>

#include "platform/linux/desktop_programs.h"

namespace ferrowyn {

X11Workspace::X11Workspace(const X11DesktopMonitor& monitor, Desktop desktop)
    : model_(monitor.model()), desktop_(std::move(desktop)) {
    modelEvents_ = model_.workspaceEvents().subscribe([this](const WorkspaceEvent& event) { events_.send(event); });
    screenChanges_ = monitor.screenChanges().subscribe([this](bool) {
        events_.send({WorkspaceEvent::Kind::screenParametersDidChange, std::nullopt});
    });
}

std::vector<RunningApplication> X11Workspace::runningApplications() const {
    return model_.runningApplications();
}

std::optional<RunningApplication> X11Workspace::runningApplication(Pid pid) const {
    return model_.runningApplication(pid);
}

std::optional<Pid> X11Workspace::frontmostPid() const {
    return model_.frontmostPid();
}

Subscription X11Workspace::observe(EventHandler handler) {
    return events_.subscribe(std::move(handler));
}

std::optional<std::string> X11Workspace::installedApplicationName(std::string_view bundleIdentifier) const {
    return desktop_.installedApplicationName ? desktop_.installedApplicationName(bundleIdentifier) : std::nullopt;
}

std::optional<std::string> X11Workspace::installedApplicationPath(std::string_view bundleIdentifier) const {
    return desktop_.installedApplicationPath ? desktop_.installedApplicationPath(bundleIdentifier) : std::nullopt;
}

bool X11Workspace::open(std::string_view url) {
    return desktop_.openAddress && desktop_.openAddress(url);
}

bool X11Workspace::openSettings(SettingsPage page) {
    return desktop_.openSettings && desktop_.openSettings(page);
}

namespace {

class X11AccessibilityObserver final : public AccessibilityObserver {
public:
    X11AccessibilityObserver(Pid pid, AccessibilityObservers::Handler handler, const X11DesktopModel& model)
        : pid_(pid), handler_(std::move(handler)) {
        subscription_ = model.notifications().subscribe([this](const auto& notification) { receive(notification); });
    }

    void addApplicationNotification(AccessibilityNotification notification) override {
        applicationNotifications_.emplace(notification);
    }
    void addWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override {
        if (const auto id = X11Element::windowOf(window)) {
            windowNotifications_[*id].emplace(notification);
        }
    }
    void removeWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override {
        const auto id = X11Element::windowOf(window);
        const auto found = id ? windowNotifications_.find(*id) : windowNotifications_.end();
        if (found == windowNotifications_.end()) {
            return;
        }
        found->second.erase(notification);
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
            handler(notification.kind);
        }
    }

    [[nodiscard]] bool isWanted(const X11AccessibilityNotification& notification) const {
        if (!notification.window) {
            return applicationNotifications_.contains(notification.kind);
        }
        const auto window = windowNotifications_.find(*notification.window);
        if (window != windowNotifications_.end()) {
            return window->second.contains(notification.kind);
        }
        // A window that ended before anybody could register for it is told about all the same: the snapshot that was
        // under way may still list it.
        return notification.kind == AccessibilityNotification::uiElementDestroyed;
    }

    Pid pid_;
    AccessibilityObservers::Handler handler_;
    std::set<AccessibilityNotification> applicationNotifications_;
    std::unordered_map<xcb_window_t, std::set<AccessibilityNotification>> windowNotifications_;
    Subscription subscription_;
};

}  // namespace

std::unique_ptr<AccessibilityObserver> X11AccessibilityObservers::create(Pid pid, Handler handler) {
    if (!model_.runningApplication(pid)) {
        return nullptr;
    }
    return std::make_unique<X11AccessibilityObserver>(pid, std::move(handler), model_);
}

namespace {

std::optional<std::string> unlessEmpty(std::string_view text) {
    return text.empty() ? std::nullopt : std::optional(std::string(text));
}

}  // namespace

Pid X11Application::ownPid() const {
    return getpid();
}

Subscription X11Application::observeDidBecomeActive(std::function<void()> handler) {
    return model_.workspaceEvents().subscribe(
        [own = ownPid(), handler = std::move(handler)](const WorkspaceEvent& event) {
            if (event.kind == WorkspaceEvent::Kind::didActivate && event.application && event.application->pid == own) {
                handler();
            }
        });
}

BundleInfo X11Application::bundleInfo() const {
    return {.name = "Ferrowyn",
            .shortVersion = FERROWYN_VERSION,
            .path = QCoreApplication::applicationFilePath().toStdString(),
            .updateHost = unlessEmpty(FERROWYN_UPDATE_HOST),
            .homePage = unlessEmpty(FERROWYN_HOME_PAGE)};
}

std::string X11Application::systemVersion() const {
    const auto version = QVersionNumber::fromString(QSysInfo::productVersion());
    return fmt::format("{}.{}", std::max(version.majorVersion(), 0), std::max(version.minorVersion(), 0));
}

std::optional<int> X11Application::calendarYear(WallTime /*moment*/) const {
    return std::nullopt;
}

void X11Application::setActivationPolicy(ActivationPolicy /*policy*/) {}

void X11Application::activate() {}

void X11Application::bringToFront(WindowId window) {
    windows_.bringToFront(window);
}

void X11Application::terminate() {
    QCoreApplication::quit();
}

void X11Application::revealInFileManager() {
    ferrowyn::revealInFileManager(QDBusConnection::sessionBus(), bundleInfo().path,
                                  [](const QString& address) { QDesktopServices::openUrl(QUrl(address)); });
}

}  // namespace ferrowyn
