#include "inventory/window_observation_center.h"

#include <fmt/format.h>

#include <cassert>
#include <utility>

#include "platform/log.h"
#include "platform/platform.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

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
    // What an earlier run saw says nothing about what happened since this one began.
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
    // Stored before anyone is told: a subscriber may stop, or end, this object.
    const auto previous = std::exchange(lastFingerprint_, fingerprint);
    if (previous && *previous != fingerprint) {
        changes_.send(WindowChange::structural());
    }
}

}  // namespace ferrowyn
