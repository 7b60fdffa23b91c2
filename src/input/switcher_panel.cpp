#include "input/switcher_panel.h"

#include <utility>

namespace ferrowyn {

namespace {

/// Far away from any screen.
constexpr Rect warmUpFrame{-10000, -10000, 640, 300};

}  // namespace

void SwitcherPanel::install(std::unique_ptr<PanelContent> content) {
    panel_.setContent(std::move(content));
    panel_.setFrame(warmUpFrame);
    panel_.orderFront();
    panel_.layOutContent();
    panel_.orderOut();
}

void SwitcherPanel::prepare(const Rect& frame) {
    panel_.prepare(frame);
}

void SwitcherPanel::show(const panel_geometry::Placement& placement) {
    sessionTopY_ = placement.topY;
    frame_ = placement.frame;
    panel_.setFrame(placement.frame);
    panel_.orderFrontRegardless();
}

void SwitcherPanel::refit(const Rect& frame) {
    if (frame_ != frame) {
        frame_ = frame;
        panel_.setFrame(frame);
    }
}

void SwitcherPanel::hide() {
    panel_.orderOut();
    sessionTopY_.reset();
}

}  // namespace ferrowyn
