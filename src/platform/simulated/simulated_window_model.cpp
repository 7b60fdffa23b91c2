#include "platform/simulated/simulated_window_model.h"

#include <algorithm>

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

}  // namespace ferrowyn
