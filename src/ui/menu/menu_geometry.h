#pragma once

#include <optional>
#include <vector>

#include "core/geometry.h"
#include "platform/status_item.h"

namespace ferrowyn {

/// Where the rows of a menu are, in points from the menu's upper left corner, y growing downward. A plain value.
class MenuGeometry {
public:
    static constexpr double minimumWidth = menu_header::width;
    static constexpr double headerHeight = menu_header::height;
    static constexpr double rowHeight = 25;
    static constexpr double separatorHeight = 11;
    static constexpr double sectionTitleHeight = 22;
    /// Above the first row and below the last.
    static constexpr double padding = 6;

    /// The columns of a row: the centres of check mark and symbol, and the left edge of the title. Titles are aligned
    /// with the program's name in the header, texts at the right with the gear's right edge.
    static constexpr double checkCenter = 20;
    static constexpr double symbolCenter = 38;
    static constexpr double titleLeft = menu_header::textLeft;
    static constexpr double inset = 14;
    static constexpr double symbolPoints = 13;
    /// From the menu's edges to the selection.
    static constexpr double selectionInset = 6;

    MenuGeometry() = default;
    MenuGeometry(const StatusMenu& menu, double width);

    [[nodiscard]] double width() const { return width_; }
    [[nodiscard]] double height() const { return height_; }
    [[nodiscard]] int rowCount() const { return static_cast<int>(rows_.size()); }
    /// As wide as the menu.
    [[nodiscard]] const Rect& row(int index) const { return rows_.at(static_cast<std::size_t>(index)); }
    [[nodiscard]] std::optional<int> rowAt(const Point& point) const;

    [[nodiscard]] static double heightOf(MenuRow::Kind kind);
    /// The place of a piece of a row in a language that runs from right to left.
    [[nodiscard]] static Rect mirrored(const Rect& row, const Rect& piece) {
        return {row.minX() + row.maxX() - piece.maxX(), piece.y, piece.width, piece.height};
    }

private:
    double width_ = minimumWidth;
    double height_ = 2 * padding;
    std::vector<Rect> rows_;
};

/// Where a menu of this size opens beside the icon that was pressed: below it, or above it where the icon is in the
/// lower half of its screen, and never outside `available`, which is the screen without the desktop's panels. All
/// rectangles have one coordinate system, y growing downward. An empty anchor is the position of the pointer.
[[nodiscard]] Rect menuPlacement(const Rect& anchor, const Size& menu, const Rect& screen, const Rect& available);

}  // namespace ferrowyn
