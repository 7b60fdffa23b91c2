#include "ui/menu_placement.h"

#include <algorithm>

namespace ferrowyn {

namespace {

/// Between icon and menu.
constexpr double gap = 4;

/// Of what is too large the beginning is shown.
double kept(double start, double extent, double least, double most) {
    return std::max(std::min(start, most - extent), least);
}

}  // namespace

Rect menuPlacement(const Rect& anchor, const Size& menu, const Rect& screen, const Rect& available) {
    const double distance = anchor.isEmpty() ? 0 : gap;
    const bool opensUpward = anchor.midY() > screen.midY();
    const double top = opensUpward ? anchor.minY() - distance - menu.height : anchor.maxY() + distance;
    return {kept(anchor.minX(), menu.width, available.minX(), available.maxX()),
            kept(top, menu.height, available.minY(), available.maxY()), menu.width, menu.height};
}

}  // namespace ferrowyn
