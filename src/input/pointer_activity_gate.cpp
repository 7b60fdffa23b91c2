#include "input/pointer_activity_gate.h"

#include <cmath>

namespace ferrowyn {

bool PointerActivityGate::admitsHover(const Point& pointer) {
    if (anchor && std::hypot(pointer.x - anchor->x, pointer.y - anchor->y) > activityDistance) {
        anchor.reset();
    }
    return !anchor.has_value();
}

}  // namespace ferrowyn
