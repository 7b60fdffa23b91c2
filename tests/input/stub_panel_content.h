#pragma once

#include <memory>
#include <utility>

#include "input/switcher_panel.h"
#include "platform/panel.h"

namespace ferrowyn {

/// Content that draws nothing.
class StubPanelContent final : public PanelContent {
public:
    [[nodiscard]] QWidget* widget() override { return nullptr; }
    void synchronize() override {}
    void setBackground(PanelBackground) override {}
    void renderPreview(QImage&) override {}
    [[nodiscard]] bool matchesPreview() const override { return false; }
};

/// Makes stub content and keeps the callbacks, through which a test plays the content's part.
inline SwitcherContentFactory stubContentFactory(SwitcherContentCallbacks& callbacks) {
    return [&callbacks](SwitcherViewModel&, Preferences&, SwitcherContentCallbacks given) {
        callbacks = std::move(given);
        return std::make_unique<StubPanelContent>();
    };
}

}  // namespace ferrowyn
