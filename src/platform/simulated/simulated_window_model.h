#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"
#include "platform/workspace.h"

namespace ferrowyn {

class SimulatedAccessibilityObservers;
class SimulatedMainLoop;
class SimulatedWorkspace;

/// An application as a test launches it.
struct SimulatedAppState {
    Pid pid = 0;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> localizedName;
    std::optional<std::string> bundleURL;
    ActivationPolicy activationPolicy = ActivationPolicy::regular;
};

/// A window as a test opens it, with what the window server and the application report about it.
struct SimulatedWindowState {
    WindowId id = 0;
    Pid pid = 0;
    std::string title;
    std::optional<std::string> subrole = "AXStandardWindow";
    Rect frame{100, 100, 800, 600};
    bool isMinimized = false;
    bool isFullScreen = false;
    bool isOnActiveSpace = true;
    /// What the window server reports; absent when it does not.
    std::optional<double> alpha = 1.0;
    std::optional<std::int64_t> layer = 0;
    std::optional<Rect> serverBounds;  ///< the frame when absent
    bool isListedByWindowServer = true;
    bool isListedByAccessibility = true;
    bool hasWindowNumber = true;
    bool hasAccessibilityFrame = true;
    /// The number that the lookup returns instead of the id, for an application that reports a wrong one.
    std::optional<WindowId> reportedWindowNumber = std::nullopt;
    /// The modal dialog that takes its input. Only a description: requests for the window still act on the window
    /// itself.
    std::optional<WindowId> blockedBy = std::nullopt;
};

/// The Accessibility element of a simulated window. All elements of one window are equal.
class SimulatedElement final : public AXElement {
public:
    explicit SimulatedElement(WindowId id) : id_(id) {}

    [[nodiscard]] WindowId id() const { return id_; }
    [[nodiscard]] bool equals(const AXElement& other) const override {
        const auto* element = dynamic_cast<const SimulatedElement*>(&other);
        return element != nullptr && element->id_ == id_;
    }
    [[nodiscard]] std::size_t hash() const override { return std::hash<WindowId>{}(id_); }

    [[nodiscard]] static AXElementRef reference(WindowId id) {
        return AXElementRef(std::make_shared<SimulatedElement>(id));
    }
    /// 0, which is no window's id, for an element of another desktop.
    [[nodiscard]] static WindowId idOf(const AXElementRef& reference) {
        const auto* element = dynamic_cast<const SimulatedElement*>(&reference.element());
        return element != nullptr ? element->id_ : 0;
    }

private:
    WindowId id_;
};

/// The state of the simulated desktop. A value, so that a reading can keep a copy of it.
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
    /// Call it when `focusedWindow` may have changed.
    void noteFocus();
    /// The application's front-most window.
    [[nodiscard]] std::optional<WindowId> topWindowOf(Pid pid) const;

    /// The result of the lookup of the element's window number.
    [[nodiscard]] std::optional<WindowId> lookUpNumber(const SimulatedWindowState& window) const;
};

/// Changes the model as applications, the user and the window manager do, and sends the notifications: at once when a
/// test plays the user, from the loop when the program requested the change, because an answer never comes before the
/// request has returned.
class SimulatedWindows {
public:
    enum class Telling { nobody, atOnce, fromTheLoop };

    SimulatedWindows(SimulatedWindowModel& model, SimulatedAccessibilityObservers& observers,
                     SimulatedWorkspace& workspace, SimulatedMainLoop& mainLoop)
        : model_(model), observers_(observers), workspace_(workspace), mainLoop_(mainLoop) {}

    void launch(const SimulatedAppState& app, Telling telling);
    /// Also removes its windows, without notifications for them. When it was frontmost, no application is frontmost
    /// afterwards.
    void terminate(Pid pid);
    /// Opens in front of all others, focused in its application unless it is minimised.
    void open(const SimulatedWindowState& window, Telling telling);
    /// The application's next window gets the focus.
    void close(WindowId id, Telling telling);
    void setTitle(WindowId id, std::string title);
    /// Does what a click does: the window is unhidden, restored, in front and focused, and its application is active.
    void focusByUser(WindowId id);

    void setHidden(Pid pid, bool isHidden, Telling telling);
    void unminimize(WindowId id, Telling telling);
    void raise(WindowId id) { model_.moveToFront(id); }
    /// The main window and the focused window are always the same here.
    void setFocusedWindow(Pid pid, std::optional<WindowId> id, Telling telling);
    /// Brings the application's focused window to the front.
    void activate(Pid pid, Telling telling);

private:
    void tell(Telling telling, std::function<void()> message);
    void announce(Telling telling, WorkspaceEvent::Kind kind, const SimulatedWindowModel::App& app);

    SimulatedWindowModel& model_;
    SimulatedAccessibilityObservers& observers_;
    SimulatedWorkspace& workspace_;
    SimulatedMainLoop& mainLoop_;
};

}  // namespace ferrowyn
