#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "core/app_window.h"
#include "core/geometry.h"
#include "input/panel_geometry.h"
#include "platform/panel.h"

namespace ferrowyn {

class Preferences;
class SwitcherViewModel;

/// What the panel's content reports back. Called on the main thread; each holds the controller weakly.
struct SwitcherContentCallbacks {
    /// A row was clicked.
    std::function<void(const AppWindow&)> onActivate;
    /// The pointer is over the row with this index.
    std::function<void(int)> onHover;
    /// A row's favourite button was clicked.
    std::function<void(const AppWindow&)> onToggleFavourite;
    /// The button of the permission state was clicked.
    std::function<void()> onRequestPermissions;
    /// The content looks different now (colours, fonts): a frame that was drawn ahead is not what it would show.
    std::function<void()> onAppearanceChanged;
};

/// Makes the panel's content. It stands between the controller and the user interface, which is above it. The view
/// model and the preferences outlive the content.
using SwitcherContentFactory = std::function<std::unique_ptr<PanelContent>(
    SwitcherViewModel& viewModel, Preferences& preferences, SwitcherContentCallbacks callbacks)>;

/// The switcher's one panel, with what is known of it for the current session. It takes no keyboard focus: all keys
/// reach the switcher through the event tap. Main thread. The platform's panel outlives this object.
class SwitcherPanel {
public:
    explicit SwitcherPanel(Panel& panel) : panel_(panel) {}

    /// Hosts the content and shows it once off the screen, so that the first session is not slow. Called once.
    void install(std::unique_ptr<PanelContent> content);
    /// A hint where the next session would appear, while hidden.
    void prepare(const Rect& frame);
    void show(const panel_geometry::Placement& placement);
    /// Gives the shown panel another frame.
    void refit(const Rect& frame);
    void hide();

    /// The panel's upper edge; absent when no session is shown.
    [[nodiscard]] std::optional<double> sessionTopY() const { return sessionTopY_; }

private:
    Panel& panel_;
    std::optional<double> sessionTopY_;
    /// What the panel was last told; asking for the same frame again would make the desktop lay it out again.
    std::optional<Rect> frame_;
};

}  // namespace ferrowyn
