#pragma once

#include <functional>

#include "core/geometry.h"
#include "core/published.h"

namespace ferrowyn {

/// The mouse pointer. Main thread.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// Where the pointer is, in points growing upward: the upper left corner of the pixel under it
    /// (`Screen::hasPointerAt`). Never waits: an adapter for which asking is a round trip answers with the place that
    /// came with the latest key or pointer event.
    [[nodiscard]] virtual Point location() const = 0;
    /// Makes `location` the place of this moment, for what no key or pointer event has led to. May wait for a round
    /// trip.
    virtual void refresh() = 0;

    /// Told about each press of any mouse button that goes to another application. The press still reaches its target.
    [[nodiscard]] virtual Subscription observeClicksElsewhere(std::function<void()> handler) = 0;
};

}  // namespace ferrowyn
