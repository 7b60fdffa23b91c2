#pragma once

namespace ferrowyn {

/// A place in points.
struct Point {
    double x = 0;
    double y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

/// An extent in points.
struct Size {
    double width = 0;
    double height = 0;
    friend bool operator==(const Size&, const Size&) = default;
};

/// A rectangle in points. Which way y grows is said where the rectangle is used.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    [[nodiscard]] double minX() const { return x; }
    [[nodiscard]] double minY() const { return y; }
    [[nodiscard]] double midX() const { return x + width / 2; }
    [[nodiscard]] double midY() const { return y + height / 2; }
    [[nodiscard]] double maxX() const { return x + width; }
    [[nodiscard]] double maxY() const { return y + height; }
    [[nodiscard]] bool isEmpty() const { return width <= 0 || height <= 0; }

    /// The edges at the smaller coordinates belong to the rectangle, the others do not, so that neighbours share no
    /// point.
    [[nodiscard]] bool contains(const Point& point) const {
        return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
    }

    friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace ferrowyn
