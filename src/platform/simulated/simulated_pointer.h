#pragma once

#include "core/published.h"
#include "platform/pointer.h"

namespace ferrowyn {

class SimulatedPointer final : public Pointer {
public:
    [[nodiscard]] Point location() const override { return location_; }
    void refresh() override { location_ = place_; }
    [[nodiscard]] Subscription observeClicksElsewhere(std::function<void()> handler) override {
        return clicks_.subscribe([handler = std::move(handler)](const Click&) { handler(); });
    }

    void move(Point location) { location_ = place_ = location; }
    /// The pointer moves, and no event says so.
    void moveUnnoticed(Point location) { place_ = location; }
    void clickElsewhere() { clicks_.send({}); }

private:
    struct Click {};

    Point location_;
    Point place_;
    Subject<Click> clicks_;
};

}  // namespace ferrowyn
