#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

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

/// Passes everything on to another panel, lets a test look around at every call, and keeps the prepared frames.
class SpyPanel final : public Panel {
public:
    explicit SpyPanel(Panel& panel) : panel_(panel) {}

    void setContent(std::unique_ptr<PanelContent> content) override { panel_.setContent(std::move(content)); }
    void setFrame(const Rect& frame) override { panel_.setFrame(frame); }
    void layOutContent() override { panel_.layOutContent(); }
    void prepare(const Rect& frame) override {
        prepared.push_back(frame);
        panel_.prepare(frame);
    }
    void orderFront() override { panel_.orderFront(); }
    void orderFrontRegardless() override {
        panel_.orderFrontRegardless();
        call(onOrderFront);
    }
    void orderOut() override {
        panel_.orderOut();
        call(onOrderOut);
    }

    std::function<void()> onOrderFront;
    std::function<void()> onOrderOut;
    std::vector<Rect> prepared;

private:
    static void call(const std::function<void()>& hook) {
        if (hook) {
            hook();
        }
    }

    Panel& panel_;
};

}  // namespace ferrowyn
