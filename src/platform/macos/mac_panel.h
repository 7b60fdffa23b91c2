#pragma once

#include <memory>

#include "platform/panel.h"
#include "platform/qt/hosted_widget.h"

namespace ferrowyn {

/// The switcher's panel: a window of the system with a blurred material, and the toolkit's widget upon it. Main thread.
class MacPanel final : public Panel {
public:
    /// `cornerRadius` is that of the content's outline.
    MacPanel(WidgetHost host, double cornerRadius);
    ~MacPanel() override;
    MacPanel(const MacPanel&) = delete;
    MacPanel& operator=(const MacPanel&) = delete;

    void setContent(std::unique_ptr<PanelContent> content) override;
    void setFrame(const Rect& frame) override;
    void layOutContent() override;
    /// Resizes the hidden window ahead of time, so that its memory is there when it is shown.
    void prepare(const Rect& frame) override;
    void orderFront() override;
    void orderFrontRegardless() override;
    void orderOut() override;

private:
    struct Parts;

    void beginShowing();
    void takeFrame(const Rect& frame);

    std::unique_ptr<PanelContent> content_;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn
