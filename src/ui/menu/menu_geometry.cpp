#include "ui/menu/menu_geometry.h"

#include <algorithm>

namespace ferrowyn {

MenuGeometry::MenuGeometry(const StatusMenu& menu, double width) : width_(std::max(width, minimumWidth)) {
    double top = padding;
    for (const auto& row : menu) {
        const double height = heightOf(row.kind);
        rows_.push_back({0, top, width_, height});
        top += height;
    }
    height_ = top + padding;
}

std::optional<int> MenuGeometry::rowAt(const Point& point) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const Rect& row) { return row.contains(point); });
    if (found == rows_.end()) {
        return std::nullopt;
    }
    return static_cast<int>(found - rows_.begin());
}

double MenuGeometry::heightOf(MenuRow::Kind kind) {
    switch (kind) {
        case MenuRow::Kind::header:
            return headerHeight;
        case MenuRow::Kind::separator:
            return separatorHeight;
        case MenuRow::Kind::sectionTitle:
            return sectionTitleHeight;
        case MenuRow::Kind::item:
            return rowHeight;
    }
    return rowHeight;
}

namespace {

/// Between icon and menu.
constexpr double gap = 4;

/// Moves a range into the limits. Of a range that is too large the beginning is kept.
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
