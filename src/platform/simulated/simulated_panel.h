#pragma once

#include <string>
#include <vector>

#include "platform/panel.h"

namespace ferrowyn {

/// What a test may ask about the panel.
struct SimulatedPanelState {
    bool isVisible = false;
    Rect frame;
    int orderFrontCount = 0;
    int layoutCount = 0;
    int prepareCount = 0;
    /// Every call in order: "setFrame x y w h", "layOutContent", "orderFront", "orderFrontRegardless", "orderOut".
    std::vector<std::string> calls;
};

/// A panel that nobody sees. As every adapter does, it synchronises its content before it would draw it.
class SimulatedPanel final : public Panel {
public:
    void setContent(std::unique_ptr<PanelContent> content) override;
    void setFrame(const Rect& frame) override;
    void layOutContent() override;
    void prepare(const Rect& frame) override;
    void orderFront() override;
    void orderFrontRegardless() override;
    void orderOut() override;

    [[nodiscard]] const SimulatedPanelState& state() const { return state_; }

private:
    void show(std::string call);
    void synchronizeContent();

    std::unique_ptr<PanelContent> content_;
    SimulatedPanelState state_;
};

}  // namespace ferrowyn
