#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/simulated/simulated_window_model.h"

namespace ferrowyn {

class SimulatedAccessibilityObservers;
class SimulatedMainLoop;
class SimulatedWorkspace;

/// Changes the model as applications, the user and the window manager do, and tells whoever watches: at once where a
/// test plays the user, from the loop where the program itself asked for the change, as no answer overtakes a request.
class SimulatedWindows {
public:
    enum class Telling { nobody, atOnce, fromTheLoop };

    SimulatedWindows(SimulatedWindowModel& model, SimulatedAccessibilityObservers& observers,
                     SimulatedWorkspace& workspace, SimulatedMainLoop& mainLoop)
        : model_(model), observers_(observers), workspace_(workspace), mainLoop_(mainLoop) {}

    void launch(const SimulatedAppState& app, Telling telling);
    /// Its windows go with it, unannounced; no application is in front then, if it was.
    void terminate(Pid pid);
    /// In front of all others, and focused in its application unless it is minimised.
    void open(const SimulatedWindowState& window, Telling telling);
    /// The application's next window gets its focus.
    void close(WindowId id, Telling telling);
    void setTitle(WindowId id, std::string title);
    /// As a click does it: unhidden, restored, in front, focused, its application active.
    void focusByUser(WindowId id);

    void setHidden(Pid pid, bool isHidden, Telling telling);
    void unminimize(WindowId id, Telling telling);
    void raise(WindowId id) { model_.moveToFront(id); }
    /// Main and focused window are one here.
    void setFocusedWindow(Pid pid, std::optional<WindowId> id, Telling telling);
    /// With its focused window in front.
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
