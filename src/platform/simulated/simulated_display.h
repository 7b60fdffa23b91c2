#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/published.h"
#include "platform/panel.h"
#include "platform/screens.h"
#include "platform/status_item.h"

namespace ferrowyn {

/// One screen of 1440 × 900 points with a menu bar of 25 points at first.
class SimulatedScreens final : public Screens {
public:
    [[nodiscard]] std::vector<Screen> all() const override { return screens_; }
    [[nodiscard]] std::optional<Screen> main() const override {
        if (!mainIndex_ || *mainIndex_ >= screens_.size()) {
            return std::nullopt;
        }
        return screens_[*mainIndex_];
    }

    [[nodiscard]] Subscription observe(std::function<void()> handler) const override {
        return changes_.subscribe([handler = std::move(handler)](const bool&) { handler(); });
    }

    [[nodiscard]] bool isObserved() const { return changes_.hasSubscribers(); }
    void set(std::vector<Screen> screens, std::optional<std::size_t> mainIndex) {
        screens_ = std::move(screens);
        mainIndex_ = mainIndex;
        changes_.send(true);
    }

private:
    std::vector<Screen> screens_{{{0, 0, 1440, 900}, {0, 0, 1440, 875}}};
    std::optional<std::size_t> mainIndex_ = 0;
    Subject<bool> changes_;
};

class SimulatedPointer final : public Pointer {
public:
    [[nodiscard]] Point location() const override { return location_; }
    void refresh() override { location_ = place_; }
    [[nodiscard]] Subscription observeClicksElsewhere(std::function<void()> handler) override {
        return clicks_.subscribe([handler = std::move(handler)](const Click&) { handler(); });
    }

    [[nodiscard]] bool isObserved() const { return clicks_.hasSubscribers(); }
    void move(Point location) { location_ = place_ = location; }
    /// Moves the pointer without an event.
    void moveUnnoticed(Point location) { place_ = location; }
    void clickElsewhere() { clicks_.send({}); }

private:
    struct Click {};

    Point location_;
    Point place_;
    Subject<Click> clicks_;
};

/// The state of the panel and the calls it got, for tests.
struct SimulatedPanelState {
    bool isVisible = false;
    Rect frame;
    int orderFrontCount = 0;
    int layoutCount = 0;
    /// Every call in order: "setFrame x y w h", "layOutContent", "orderFront", "orderFrontRegardless", "orderOut".
    std::vector<std::string> calls;
};

/// A panel that is not drawn. Like every adapter, it synchronises its content before it would draw it.
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

/// Keeps the button and the menu for tests, and chooses rows as a user does.
class SimulatedStatusItem final : public StatusItem {
public:
    void setButton(const StatusButton& value) override {
        button = value;
        ++buttonCount;
    }
    void setMenu(const StatusMenu& value) override {
        menu = value;
        ++menuCount;
    }
    void setActionHandler(std::function<void(const MenuRow&)> handler) override { handler_ = std::move(handler); }

    void choose(const MenuRow& row) const {
        if (handler_) {
            handler_(row);
        }
    }

    StatusButton button;
    StatusMenu menu;
    /// How often each was set.
    int buttonCount = 0;
    int menuCount = 0;

private:
    std::function<void(const MenuRow&)> handler_;
};

}  // namespace ferrowyn
