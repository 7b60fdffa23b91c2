#pragma once

#include <QColor>
#include <algorithm>

namespace ferrowyn {

/// How well one colour can be read on another. Pure functions; any thread.
namespace contrast {

/// The lowest contrast ratio for text of normal size, from the same guidelines as `ratio`.
inline constexpr double readableRatio = 4.5;

/// The colour with this opacity, from 0 (invisible) to 1.
[[nodiscard]] QColor withAlpha(QColor color, double alpha);
/// The colour that painting `top`, which may be translucent, on the opaque `ground` gives.
[[nodiscard]] QColor blended(const QColor& top, const QColor& ground);
/// The contrast ratio of the Web Content Accessibility Guidelines, from 1 (equal) to 21 (black on white), of two opaque
/// colours.
[[nodiscard]] double ratio(const QColor& a, const QColor& b);
/// `ground`, darkened only as far as needed for `text` on it to have at least this contrast ratio.
[[nodiscard]] QColor darkenedFor(const QColor& ground, const QColor& text, double minimumRatio);

}  // namespace contrast

/// The fine lines between the parts of the panel, the menu and the utility windows. Pure functions; any thread.
namespace hairline {

/// The width in points: half a point, but at least one device pixel. `scale` is device pixels per point.
[[nodiscard]] inline double width(double scale) {
    constexpr double points = 0.5;
    return std::max(points, 1 / scale);
}

/// The colour of a line, from the colour of the text beside it.
[[nodiscard]] inline QColor color(const QColor& textPrimary) {
    constexpr double opacity = 0.14;
    return contrast::withAlpha(textPrimary, opacity);
}

}  // namespace hairline

}  // namespace ferrowyn
