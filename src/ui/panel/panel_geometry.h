#pragma once

#include <optional>
#include <vector>

#include "core/geometry.h"
#include "core/switcher_options.h"

namespace ferrowyn {

/// Where everything in the panel stands. Points from the panel's top left corner, y growing downward. Lines keep the
/// heights and spacings with which the controller sizes the panel. Costs the same for ten rows as for ten thousand,
/// the list of group starts apart. A plain value.
class PanelGeometry {
public:
    static constexpr double searchLineHeight = 56;
    static constexpr double footerHeight = 34;
    static constexpr double rowsInset = 8;
    static constexpr double rowHeight = 52;
    static constexpr double cardHeight = 104;
    static constexpr double rowSpacing = 1;
    static constexpr double cardSpacing = 6;
    static constexpr double groupHeaderHeight = 28;
    static constexpr double sideMargin = 20;

    struct Input {
        SwitcherLayout layout = SwitcherLayout::list;
        Size size;
        int rowCount = 0;
        /// The rows that start a group, ascending; used in grouped layout only.
        std::vector<int> groupStarts;
        bool showsFooter = false;
    };

    PanelGeometry() = default;
    explicit PanelGeometry(Input input);

    [[nodiscard]] const Size& size() const { return input_.size; }
    [[nodiscard]] int rowCount() const { return input_.rowCount; }
    [[nodiscard]] int headerCount() const;
    /// How many headers stand before this row, its own included.
    [[nodiscard]] int headersUpTo(int index) const;
    [[nodiscard]] Rect searchLine() const;
    /// Between search line and footer; rows are clipped to it.
    [[nodiscard]] Rect body() const;
    [[nodiscard]] std::optional<Rect> footer() const;

    /// How far the rows can be scrolled; 0 when all of them fit.
    [[nodiscard]] double maximumScroll() const;
    [[nodiscard]] Rect row(int index, double scroll) const;
    /// The header over this row; none when the row starts no group or the layout has no headers.
    [[nodiscard]] std::optional<Rect> header(int index, double scroll) const;

    /// A half-open range of row indices.
    struct Range {
        int first = 0;
        int last = 0;
        friend bool operator==(const Range&, const Range&) = default;
    };
    /// The rows of which something, their header included, is inside the body.
    [[nodiscard]] Range visibleRows(double scroll) const;
    /// The row at this point of the body; spacing, headers and everything outside the body belong to no row.
    [[nodiscard]] std::optional<int> rowAt(const Point& point, double scroll) const;
    /// The nearest scroll position that shows the whole row with its header and some air.
    [[nodiscard]] double scrollShowing(int index, double scroll) const;

private:
    [[nodiscard]] bool isGrid() const { return input_.layout == SwitcherLayout::grid; }
    [[nodiscard]] bool isGrouped() const { return input_.layout == SwitcherLayout::grouped; }
    [[nodiscard]] double lineHeight() const { return isGrid() ? cardHeight : rowHeight; }
    [[nodiscard]] double lineSpacing() const { return isGrid() ? cardSpacing : rowSpacing; }
    [[nodiscard]] bool startsGroup(int index) const;
    /// From the top of the scrolled content.
    [[nodiscard]] double rowTop(int index) const;
    [[nodiscard]] double contentHeight() const;
    /// The first row whose lower edge is below `offset` in the scrolled content.
    [[nodiscard]] int firstRowEndingBelow(double offset) const;

    Input input_;
};

}  // namespace ferrowyn
