#pragma once

#include <functional>
#include <utility>

#include "platform/status_item.h"

namespace ferrowyn {

/// Keeps what it was given for a test to look at, and chooses rows as a user would.
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
