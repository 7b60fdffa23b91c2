#pragma once

#include <QColor>
#include <algorithm>

#include "ui/contrast.h"

/// The fine lines between the parts of the panel, the menu and the windows. Pure functions; any thread.
namespace ferrowyn::hairline {

/// In points: half of one, or one device pixel where that is more. `scale` is device pixels per point.
[[nodiscard]] inline double width(double scale) {
    constexpr double points = 0.5;
    return std::max(points, 1 / scale);
}

/// On a ground where text has this colour.
[[nodiscard]] inline QColor color(const QColor& textPrimary) {
    constexpr double opacity = 0.14;
    return contrast::withAlpha(textPrimary, opacity);
}

}  // namespace ferrowyn::hairline
