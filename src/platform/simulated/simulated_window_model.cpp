#include "platform/simulated/simulated_window_model.h"

#include <algorithm>
#include <utility>

#include "platform/simulated/simulated_main_loop.h"
#include "platform/simulated/simulated_workspace.h"

namespace ferrowyn {

RunningApplication SimulatedWindowModel::App::describe(bool isTerminated) const {
    return {state.pid,           isTerminated,   state.activationPolicy, state.bundleIdentifier,
            state.localizedName, state.bundleURL};
}

SimulatedWindowModel::App* SimulatedWindowModel::app(Pid pid) {
    const auto found = std::ranges::find(apps, pid, [](const App& app) { return app.state.pid; });
    return found == apps.end() ? nullptr : &*found;
}

const SimulatedWindowModel::App* SimulatedWindowModel::app(Pid pid) const {
    const auto found = std::ranges::find(apps, pid, [](const App& app) { return app.state.pid; });
    return found == apps.end() ? nullptr : &*found;
}

SimulatedWindowState* SimulatedWindowModel::window(WindowId id) {
    const auto found = std::ranges::find(windows, id, &SimulatedWindowState::id);
    return found == windows.end() ? nullptr : &*found;
}

const SimulatedWindowState* SimulatedWindowModel::window(WindowId id) const {
    const auto found = std::ranges::find(windows, id, &SimulatedWindowState::id);
    return found == windows.end() ? nullptr : &*found;
}

void SimulatedWindowModel::moveToFront(WindowId id) {
    const auto found = std::ranges::find(windows, id, &SimulatedWindowState::id);
    if (found != windows.end()) {
        std::rotate(windows.begin(), found, std::next(found));
    }
}

std::optional<WindowId> SimulatedWindowModel::focusedWindow() const {
    const auto* const owner = frontmost ? app(*frontmost) : nullptr;
    return owner != nullptr ? owner->focusedWindow : std::nullopt;
}

void SimulatedWindowModel::noteFocus() {
    if (raisedWindow && focusedWindow() == raisedWindow) {
        isRaiseAnswered = true;
    }
}

std::optional<WindowId> SimulatedWindowModel::topWindowOf(Pid pid) const {
    const auto found = std::ranges::find(windows, pid, &SimulatedWindowState::pid);
    return found == windows.end() ? std::nullopt : std::optional(found->id);
}

std::optional<WindowId> SimulatedWindowModel::lookUpNumber(const SimulatedWindowState& window) const {
    if (!hasWindowNumberLookup || !window.hasWindowNumber) {
        return std::nullopt;
    }
    return window.reportedWindowNumber.value_or(window.id);
}

void SimulatedWindows::launch(const SimulatedAppState& app, Telling telling) {
    model_.apps.push_back({.state = app, .focusedWindow = std::nullopt});
    announce(telling, WorkspaceEvent::Kind::didLaunch, model_.apps.back());
}

void SimulatedWindows::terminate(Pid pid) {
    const auto* app = model_.app(pid);
    if (app == nullptr) {
        return;
    }
    const WorkspaceEvent event{WorkspaceEvent::Kind::didTerminate, app->describe(true)};
    std::erase_if(model_.windows, [pid](const SimulatedWindowState& window) { return window.pid == pid; });
    std::erase_if(model_.apps, [pid](const SimulatedWindowModel::App& each) { return each.state.pid == pid; });
    if (model_.frontmost == pid) {
        model_.frontmost.reset();
    }
    workspace_.announce(event);
}

void SimulatedWindows::open(const SimulatedWindowState& window, Telling telling) {
    model_.windows.insert(model_.windows.begin(), window);
    tell(telling, [this, pid = window.pid] {
        observers_.announceForApplication(pid, AccessibilityNotification::windowCreated);
    });
    if (!window.isMinimized) {
        setFocusedWindow(window.pid, window.id, telling);
    }
}

void SimulatedWindows::close(WindowId id, Telling telling) {
    const auto* window = model_.window(id);
    if (window == nullptr) {
        return;
    }
    const Pid pid = window->pid;
    std::erase_if(model_.windows, [id](const SimulatedWindowState& each) { return each.id == id; });
    tell(telling, [this, id] { observers_.announceForWindow(id, AccessibilityNotification::uiElementDestroyed); });
    if (const auto* app = model_.app(pid); app != nullptr && app->focusedWindow == id) {
        setFocusedWindow(pid, model_.topWindowOf(pid), telling);
    }
}

void SimulatedWindows::setTitle(WindowId id, std::string title) {
    if (auto* window = model_.window(id)) {
        window->title = std::move(title);
        observers_.announceForWindow(id, AccessibilityNotification::titleChanged);
    }
}

void SimulatedWindows::focusByUser(WindowId id) {
    const auto* window = model_.window(id);
    if (window == nullptr) {
        return;
    }
    const Pid pid = window->pid;
    model_.isRaiseAnswered = true;
    setHidden(pid, false, Telling::atOnce);
    unminimize(id, Telling::atOnce);
    raise(id);
    setFocusedWindow(pid, id, Telling::atOnce);
    activate(pid, Telling::atOnce);
}

void SimulatedWindows::setHidden(Pid pid, bool isHidden, Telling telling) {
    auto* app = model_.app(pid);
    if (app == nullptr || app->isHidden == isHidden) {
        return;
    }
    app->isHidden = isHidden;
    announce(telling, isHidden ? WorkspaceEvent::Kind::didHide : WorkspaceEvent::Kind::didUnhide, *app);
    tell(telling, [this, pid, isHidden] {
        observers_.announceForApplication(
            pid, isHidden ? AccessibilityNotification::applicationHidden : AccessibilityNotification::applicationShown);
    });
}

void SimulatedWindows::unminimize(WindowId id, Telling telling) {
    auto* window = model_.window(id);
    if (window == nullptr || !window->isMinimized) {
        return;
    }
    window->isMinimized = false;
    tell(telling, [this, id] { observers_.announceForWindow(id, AccessibilityNotification::windowDeminiaturized); });
}

void SimulatedWindows::setFocusedWindow(Pid pid, std::optional<WindowId> id, Telling telling) {
    auto* app = model_.app(pid);
    if (app == nullptr || app->focusedWindow == id) {
        return;
    }
    app->focusedWindow = id;
    model_.noteFocus();
    tell(telling, [this, pid] {
        observers_.announceForApplication(pid, AccessibilityNotification::focusedWindowChanged);
        observers_.announceForApplication(pid, AccessibilityNotification::mainWindowChanged);
    });
}

void SimulatedWindows::activate(Pid pid, Telling telling) {
    auto* app = model_.app(pid);
    if (app == nullptr || model_.frontmost == pid) {
        return;
    }
    model_.frontmost = pid;
    model_.noteFocus();
    if (app->focusedWindow) {
        raise(*app->focusedWindow);
    }
    announce(telling, WorkspaceEvent::Kind::didActivate, *app);
    tell(telling,
         [this, pid] { observers_.announceForApplication(pid, AccessibilityNotification::applicationActivated); });
}

void SimulatedWindows::tell(Telling telling, std::function<void()> message) {
    switch (telling) {
        case Telling::nobody:
            return;
        case Telling::atOnce:
            message();
            return;
        case Telling::fromTheLoop:
            mainLoop_.post(std::move(message));
            return;
    }
}

void SimulatedWindows::announce(Telling telling, WorkspaceEvent::Kind kind, const SimulatedWindowModel::App& app) {
    tell(telling, [this, event = WorkspaceEvent{kind, app.describe()}] { workspace_.announce(event); });
}

}  // namespace ferrowyn
