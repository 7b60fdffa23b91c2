#pragma once

#include <cmath>

#include "core/geometry.h"

namespace ferrowyn {

/// A rectangle of device pixels on the root window, y growing downward.
struct X11PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] bool contains(int pointX, int pointY) const {
        return pointX >= x && pointX < x + width && pointY >= y && pointY < y + height;
    }
    friend bool operator==(const X11PixelRect&, const X11PixelRect&) = default;
};

/// Between device pixels that grow downward from the root's upper left corner and points that grow upward from the
/// primary screen's lower left one.
struct X11Coordinates {
    /// Device pixels a point: the toolkit's, so that what is drawn fills what is placed.
    double scale = 1;
    /// Where the primary screen's lower left corner is.
    int originX = 0;
    int originY = 0;

    [[nodiscard]] Point toPoints(int x, int y) const { return {(x - originX) / scale, (originY - y) / scale}; }
    [[nodiscard]] Rect toPoints(const X11PixelRect& pixels) const {
        const Point lowerLeft = toPoints(pixels.x, pixels.y + pixels.height);
        return {lowerLeft.x, lowerLeft.y, pixels.width / scale, pixels.height / scale};
    }
    /// To the nearest pixel; the extent is rounded by itself, as the toolkit does, so that it never depends on the
    /// place.
    [[nodiscard]] X11PixelRect toPixels(const Rect& points) const {
        const auto nearest = [](double value) { return static_cast<int>(std::lround(value)); };
        return {originX + nearest(points.x * scale), originY - nearest(points.maxY() * scale),
                nearest(points.width * scale), nearest(points.height * scale)};
    }

    friend bool operator==(const X11Coordinates&, const X11Coordinates&) = default;
};

}  // namespace ferrowyn
