#pragma once

#include <optional>
#include <vector>

#include "core/app_window.h"
#include "platform/simulated/simulated_app_state.h"
#include "platform/simulated/simulated_window_state.h"
#include "platform/workspace.h"

namespace ferrowyn {

/// What the simulated desktop consists of at one moment: a value, so that a reading can keep a copy of it.
struct SimulatedWindowModel {
    struct App {
        SimulatedAppState state;
        bool isHidden = false;
        bool isHung = false;
        bool ignoresActivation = false;
        bool isUnobservable = false;
        std::optional<WindowId> focusedWindow;

        /// Whether a request to raise, focus or show something is carried out.
        [[nodiscard]] bool obeys() const { return !isHung && !ignoresActivation; }
        [[nodiscard]] RunningApplication describe(bool isTerminated = false) const;
    };

    /// In the order in which they were launched.
    std::vector<App> apps;
    /// Front-most first.
    std::vector<SimulatedWindowState> windows;
    std::optional<Pid> frontmost;
    /// The window that was last asked to be raised, and whether it has had the focus since or the user chose another.
    std::optional<WindowId> raisedWindow;
    bool isRaiseAnswered = false;
    bool windowServerAnswers = true;
    bool hasWindowNumberLookup = true;

    [[nodiscard]] App* app(Pid pid);
    [[nodiscard]] const App* app(Pid pid) const;
    [[nodiscard]] SimulatedWindowState* window(WindowId id);
    [[nodiscard]] const SimulatedWindowState* window(WindowId id) const;
    void moveToFront(WindowId id);
    /// The focused window of the frontmost application.
    [[nodiscard]] std::optional<WindowId> focusedWindow() const;
    /// To be called when that may have changed.
    void noteFocus();
    /// The application's front-most window.
    [[nodiscard]] std::optional<WindowId> topWindowOf(Pid pid) const;

    /// What the element-to-window-number lookup answers.
    [[nodiscard]] std::optional<WindowId> lookUpNumber(const SimulatedWindowState& window) const;
};

}  // namespace ferrowyn
