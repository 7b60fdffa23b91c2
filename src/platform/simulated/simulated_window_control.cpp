#include "platform/simulated/simulated_window_control.h"

#include <fmt/format.h>

#include "platform/simulated/simulated_window_model.h"

namespace ferrowyn {

namespace {

constexpr auto fromTheLoop = SimulatedWindows::Telling::fromTheLoop;

WindowId idOf(const AXElementRef& window) {
    return SimulatedElement::idOf(window);
}

}  // namespace

bool SimulatedWindowControl::isHidden(Pid pid) const {
    const auto* app = model_.app(pid);
    return app != nullptr && app->isHidden;
}

void SimulatedWindowControl::unhide(Pid pid) {
    calls_.push_back(fmt::format("unhide {}", pid));
    if (obeys(pid)) {
        windows_.setHidden(pid, false, fromTheLoop);
    }
}

void SimulatedWindowControl::activate(Pid pid) {
    calls_.push_back(fmt::format("activate {}", pid));
    if (obeys(pid)) {
        windows_.activate(pid, fromTheLoop);
    }
}

bool SimulatedWindowControl::isActive(Pid pid) const {
    return model_.frontmost == pid;
}

void SimulatedWindowControl::setMessagingTimeout(Pid pid, Seconds timeout) {
    calls_.push_back(fmt::format("timeout {} {}", pid, timeout.count()));
}

void SimulatedWindowControl::setMessagingTimeout(const AXElementRef& window, Seconds timeout) {
    calls_.push_back(fmt::format("timeout {} {}", idOf(window), timeout.count()));
}

void SimulatedWindowControl::unminimize(const AXElementRef& window) {
    calls_.push_back(fmt::format("unminimize {}", idOf(window)));
    if (obedientWindow(window) != nullptr) {
        windows_.unminimize(idOf(window), fromTheLoop);
    }
}

void SimulatedWindowControl::raise(const AXElementRef& window) {
    calls_.push_back(fmt::format("raise {}", idOf(window)));
    model_.raisedWindow = idOf(window);
    model_.isRaiseAnswered = false;
    model_.noteFocus();
    if (obedientWindow(window) != nullptr) {
        windows_.raise(idOf(window));
    }
}

void SimulatedWindowControl::setMain(const AXElementRef& window) {
    calls_.push_back(fmt::format("main {}", idOf(window)));
    focus(window);
}

void SimulatedWindowControl::setFocused(const AXElementRef& window) {
    calls_.push_back(fmt::format("focused {}", idOf(window)));
    focus(window);
}

void SimulatedWindowControl::setFocusedWindow(Pid pid, const AXElementRef& window) {
    calls_.push_back(fmt::format("focusedWindow {} {}", pid, idOf(window)));
    focus(window);
}

void SimulatedWindowControl::setFrontmost(Pid pid) {
    calls_.push_back(fmt::format("frontmost {}", pid));
    if (obeys(pid)) {
        windows_.activate(pid, fromTheLoop);
    }
}

std::optional<bool> SimulatedWindowControl::isMain(const AXElementRef& window) const {
    const auto* state = model_.window(idOf(window));
    const auto hasFocus = this->hasFocus(window);
    return hasFocus ? std::optional(*hasFocus && !state->deniesBeingMain) : std::nullopt;
}

std::optional<bool> SimulatedWindowControl::isFocused(const AXElementRef& window) const {
    const auto* state = model_.window(idOf(window));
    const auto hasFocus = this->hasFocus(window);
    return hasFocus ? std::optional(*hasFocus && !state->deniesBeingFocused) : std::nullopt;
}

std::optional<bool> SimulatedWindowControl::hasFocus(const AXElementRef& window) const {
    const auto* state = model_.window(idOf(window));
    const auto* app = state != nullptr ? model_.app(state->pid) : nullptr;
    if (app == nullptr || app->isHung) {
        return std::nullopt;
    }
    return app->focusedWindow == state->id;
}

bool SimulatedWindowControl::wasOvertaken(const AXElementRef& window) const {
    return model_.raisedWindow == idOf(window) && model_.isRaiseAnswered && model_.focusedWindow() != idOf(window);
}

std::vector<AXElementRef> SimulatedWindowControl::windowElements(Pid pid) const {
    std::vector<AXElementRef> elements;
    const auto* app = model_.app(pid);
    if (app == nullptr || app->isHung) {
        return elements;
    }
    for (const auto& window : model_.windows) {
        if (window.pid == pid && window.isListedByAccessibility) {
            elements.push_back(SimulatedElement::reference(window.id));
        }
    }
    return elements;
}

std::optional<WindowId> SimulatedWindowControl::windowNumber(const AXElementRef& window) const {
    const auto* state = model_.window(idOf(window));
    return state != nullptr ? model_.lookUpNumber(*state) : std::nullopt;
}

bool SimulatedWindowControl::obeys(Pid pid) const {
    const auto* app = model_.app(pid);
    return app != nullptr && app->obeys();
}

SimulatedWindowState* SimulatedWindowControl::obedientWindow(const AXElementRef& element) {
    auto* window = model_.window(idOf(element));
    return window != nullptr && obeys(window->pid) ? window : nullptr;
}

void SimulatedWindowControl::focus(const AXElementRef& element) {
    if (const auto* window = obedientWindow(element)) {
        windows_.setFocusedWindow(window->pid, window->id, fromTheLoop);
    }
}

}  // namespace ferrowyn
