#pragma once

#include <QColor>
#include <algorithm>

namespace ferrowyn {

/// How readable one colour is on another. Pure functions; any thread.
namespace contrast {

/// The least ratio at which text of ordinary size is read with ease, by the same guidelines as `ratio`.
inline constexpr double readableRatio = 4.5;

/// The colour, as opaque as `alpha` says: 0 (unseen) to 1.
[[nodiscard]] QColor withAlpha(QColor color, double alpha);
/// What is seen where `top`, which may be translucent, lies on the opaque `ground`.
[[nodiscard]] QColor blended(const QColor& top, const QColor& ground);
/// 1 (the same) to 21 (black on white), as the accessibility guidelines for web content define it. Opaque colours.
[[nodiscard]] double ratio(const QColor& a, const QColor& b);
/// The colour made darker, no more than needed, until `text` reaches the ratio on it.
[[nodiscard]] QColor darkenedFor(const QColor& ground, const QColor& text, double minimumRatio);

}  // namespace contrast

/// The fine lines between the parts of the panel, the menu and the windows. Pure functions; any thread.
namespace hairline {

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

}  // namespace hairline

}  // namespace ferrowyn
