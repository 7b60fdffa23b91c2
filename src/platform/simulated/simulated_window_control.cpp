#include "platform/simulated/simulated_window_control.h"

#include <fmt/format.h>

#include "platform/simulated/simulated_window_model.h"

namespace ferrowyn {

namespace {

constexpr auto fromTheLoop = SimulatedWindows::Telling::fromTheLoop;

WindowId idOf(const AXElementRef& window) {
    return SimulatedElement::idOf(window);
}

std::string describe(const RaiseRequest& request) {
    const auto above = request.blockedWindow ? fmt::format(" above {}", idOf(*request.blockedWindow)) : std::string();
    return fmt::format("raise {}{}{}{}", idOf(request.window), above, request.isMinimized ? " restoring it" : "",
                       request.isRetry ? " again" : "");
}

}  // namespace

void SimulatedWindowControl::activateApplication(Pid pid) {
    calls_.push_back(fmt::format("activate {}", pid));
    activate(pid);
}

void SimulatedWindowControl::raiseAndFocus(const RaiseRequest& request) {
    calls_.push_back(describe(request));
    // A dialog that has been closed meanwhile leaves the keyboard to the window that it blocked.
    const auto& top = model_.window(idOf(request.window)) != nullptr ? request.window : request.chosenWindow();
    model_.raisedWindow = idOf(top);
    model_.isRaiseAnswered = false;
    model_.noteFocus();
    if (!request.isRetry) {
        if (obeys(request.pid)) {
            windows_.setHidden(request.pid, false, fromTheLoop);
        }
        if (request.isMinimized && obedientWindow(request.chosenWindow()) != nullptr) {
            windows_.unminimize(idOf(request.chosenWindow()), fromTheLoop);
        }
    }
    if (request.blockedWindow) {
        raise(*request.blockedWindow);
    }
    raise(request.window);
    if (const auto* window = obedientWindow(top)) {
        windows_.setFocusedWindow(window->pid, window->id, fromTheLoop);
    }
    activate(request.pid);
}

ActivationState SimulatedWindowControl::stateOf(Pid pid, const AXElementRef& window) const {
    const WindowId id = idOf(window);
    if (model_.raisedWindow == id && model_.isRaiseAnswered && model_.focusedWindow() != id) {
        return model_.focusedWindow() ? ActivationState::overtaken : ActivationState::lost;
    }
    const auto* app = model_.app(pid);
    if (model_.window(id) == nullptr || app == nullptr || app->isHung) {
        return ActivationState::unreadable;
    }
    return model_.frontmost == pid && app->focusedWindow == id ? ActivationState::active : ActivationState::notActive;
}

std::optional<AXElementRef> SimulatedWindowControl::findWindow(Pid pid, WindowId window) const {
    const auto* app = model_.app(pid);
    if (app == nullptr || app->isHung) {
        return std::nullopt;
    }
    for (const auto& each : model_.windows) {
        if (each.pid == pid && each.isListedByAccessibility && model_.lookUpNumber(each) == window) {
            return SimulatedElement::reference(each.id);
        }
    }
    return std::nullopt;
}

bool SimulatedWindowControl::obeys(Pid pid) const {
    const auto* app = model_.app(pid);
    return app != nullptr && app->obeys();
}

const SimulatedWindowState* SimulatedWindowControl::obedientWindow(const AXElementRef& element) const {
    const auto* window = model_.window(idOf(element));
    return window != nullptr && obeys(window->pid) ? window : nullptr;
}

void SimulatedWindowControl::activate(Pid pid) {
    if (obeys(pid)) {
        windows_.activate(pid, fromTheLoop);
    }
}

void SimulatedWindowControl::raise(const AXElementRef& element) {
    if (const auto* window = obedientWindow(element)) {
        windows_.raise(window->id);
    }
}

}  // namespace ferrowyn
