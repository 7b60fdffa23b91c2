#include "inventory/window_observation_center.h"

#include <fmt/format.h>

#include <cassert>
#include <utility>

#include "platform/log.h"
#include "platform/platform.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

namespace {

/// Mixes the bits: every input bit changes every output bit.
std::uint64_t mixed(std::uint64_t value) {
    value = (value ^ (value >> 30U)) * 0xbf58476d1ce4e5b9U;
    value = (value ^ (value >> 27U)) * 0x94d049bb133111ebU;
    return value ^ (value >> 31U);
}

}  // namespace

WindowFingerprint WindowFingerprint::of(const std::optional<std::vector<std::optional<WindowId>>>& windowOrder) {
    if (!windowOrder) {
        return {};
    }
    std::uint64_t hash = 0x9e3779b97f4a7c15U;
    for (const auto& id : *windowOrder) {
        hash = mixed(hash ^ id.value_or(0)) + 0x9e3779b97f4a7c15U;
    }
    return {static_cast<std::int64_t>(windowOrder->size()), static_cast<std::int64_t>(hash)};
}

std::unique_ptr<ApplicationObserver> ApplicationObserver::create(AccessibilityObservers& observers, Pid pid,
                                                                 ChangeHandler onChange) {
    std::unique_ptr<ApplicationObserver> created(new ApplicationObserver(pid, std::move(onChange)));
    created->observer_ =
        observers.create(pid, created->life_.guard([target = created.get()](AccessibilityNotification notification) {
            target->handle(notification);
        }));
    if (!created->observer_) {
        return nullptr;
    }
    for (const AccessibilityNotification notification : applicationNotifications) {
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
            for (const AccessibilityNotification notification : windowNotifications) {
                observer_->addWindowNotification(window, notification);
            }
        }
    }
    observedWindows_ = std::move(windows);
}

void ApplicationObserver::handle(AccessibilityNotification notification) {
    if (!isValid_) {
        return;
    }
    // A copy, because the handler may destroy this observer.
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

WindowChange ApplicationObserver::changeFor(AccessibilityNotification notification) const {
    if (notification == AccessibilityNotification::titleChanged) {
        return WindowChange::metadata();
    }
    if (notification == AccessibilityNotification::focusedWindowChanged ||
        notification == AccessibilityNotification::mainWindowChanged ||
        notification == AccessibilityNotification::applicationActivated) {
        return WindowChange::focus(pid_);
    }
    return WindowChange::structural();
}

void ApplicationObserver::unregister(const AXElementRef& window) {
    for (const AccessibilityNotification notification : windowNotifications) {
        observer_->removeWindowNotification(window, notification);
    }
}

namespace {

constexpr std::string_view category = "windows";

}  // namespace

WindowObservationCenter::WindowObservationCenter(const Platform& platform, WindowFilter filter)
    : mainLoop_(platform.mainLoop),
      log_(platform.log),
      workspace_(platform.workspace),
      accessibilityObservers_(platform.accessibilityObservers),
      windowInventory_(platform.windowInventory),
      filter_(filter) {}

WindowObservationCenter::~WindowObservationCenter() = default;

void WindowObservationCenter::start() {
    assert(mainLoop_.isMainThread());
    if (isRunning_) {
        return;
    }
    isRunning_ = true;
    for (const RunningApplication& application : workspace_.runningApplications()) {
        if (filter_.isSwitchable(application)) {
            observeApplication(application.pid);
        }
    }
    workspaceEvents_ = workspace_.observe([this](const WorkspaceEvent& event) { handle(event); });
    // The fingerprint of an earlier run says nothing about changes since this one began.
    lastFingerprint_.reset();
    revalidationTimer_ = mainLoop_.every(revalidationInterval, [this] { revalidate(); });
    log_.write(LogLevel::standard, category, fmt::format("Observation started for {} processes", observers_.size()));
}

void WindowObservationCenter::stop() {
    assert(mainLoop_.isMainThread());
    if (!isRunning_) {
        return;
    }
    observers_.clear();
    workspaceEvents_.reset();
    revalidationTimer_.reset();
    isRunning_ = false;
    log_.write(LogLevel::standard, category, "Observation stopped");
}

void WindowObservationCenter::synchronize(const std::vector<AppWindow>& windows) {
    assert(mainLoop_.isMainThread());
    std::unordered_map<Pid, std::unordered_set<AXElementRef>> elements;
    for (const AppWindow& window : windows) {
        if (window.axElement) {
            elements[window.pid].insert(*window.axElement);
        }
    }
    for (const auto& [pid, observer] : observers_) {
        observer->observeWindows(std::move(elements[pid]));
    }
}

void WindowObservationCenter::observeApplication(Pid pid) {
    if (observers_.contains(pid)) {
        return;
    }
    auto observer = ApplicationObserver::create(accessibilityObservers_, pid,
                                                [this](const WindowChange& change) { changes_.send(change); });
    if (!observer) {
        log_.write(LogLevel::debug, category, fmt::format("No AX observer for pid {}", pid));
        return;
    }
    observers_.emplace(pid, std::move(observer));
}

void WindowObservationCenter::handle(const WorkspaceEvent& event) {
    switch (event.kind) {
        case WorkspaceEvent::Kind::didLaunch:
            if (event.application) {
                if (!filter_.isSwitchable(*event.application)) {
                    return;
                }
                observeApplication(event.application->pid);
            }
            break;
        case WorkspaceEvent::Kind::didTerminate:
            if (event.application) {
                observers_.erase(event.application->pid);
            }
            break;
        case WorkspaceEvent::Kind::didActivate:
            if (event.application) {
                changes_.send(WindowChange::focus(event.application->pid));
                return;
            }
            break;
        case WorkspaceEvent::Kind::didHide:
        case WorkspaceEvent::Kind::didUnhide:
        case WorkspaceEvent::Kind::activeSpaceDidChange:
        case WorkspaceEvent::Kind::screenParametersDidChange:
            break;
    }
    changes_.send(WindowChange::structural());
}

void WindowObservationCenter::revalidate() {
    const auto fingerprint = WindowFingerprint::of(windowInventory_.windowOrder());
    // Stored before the subscribers are called, because one may stop or destroy this object.
    const auto previous = std::exchange(lastFingerprint_, fingerprint);
    if (previous && *previous != fingerprint) {
        changes_.send(WindowChange::structural());
    }
}

}  // namespace ferrowyn
