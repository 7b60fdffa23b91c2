#pragma once

#include <memory>
#include <optional>

#include "core/geometry.h"
#include "input/panel_geometry.h"

namespace ferrowyn {

class Panel;
class PanelContent;

/// The switcher's one panel, with what is known of it for the current session. It takes no keyboard focus: all keys
/// reach the switcher through the event tap. Main thread. The platform's panel outlives this object.
class SwitcherPanel {
public:
    explicit SwitcherPanel(Panel& panel) : panel_(panel) {}

    /// Hosts the content and shows it once where nobody sees it, so that the first session does not pay for the first
    /// layout. Called once.
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
    /// What the panel was last told; asking for the same frame again would only cost the desktop a round of layout.
    std::optional<Rect> frame_;
};

}  // namespace ferrowyn
