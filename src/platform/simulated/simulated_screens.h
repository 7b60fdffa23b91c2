#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "core/published.h"
#include "platform/screens.h"

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

}  // namespace ferrowyn
