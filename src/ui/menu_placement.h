#pragma once

#include "core/geometry.h"

namespace ferrowyn {

/// Where a menu of this size opens beside the icon that was pressed: below it, or above it where the icon is in the
/// lower half of its screen, and never outside `available`, which is what the desktop's panels leave of the screen.
/// One coordinate system for all, y growing downward. An anchor without extent is where the pointer was.
[[nodiscard]] Rect menuPlacement(const Rect& anchor, const Size& menu, const Rect& screen, const Rect& available);

}  // namespace ferrowyn
