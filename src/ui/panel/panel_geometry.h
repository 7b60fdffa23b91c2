#pragma once

#include <optional>
#include <vector>

#include "core/geometry.h"
#include "core/switcher_options.h"
#include "input/panel_geometry.h"

namespace ferrowyn {

/// The layout of the panel, in points from its top left corner, y growing downward, with the heights and distances
/// that its size was computed from. Except for the list of group starts, the cost does not grow with the number of
/// rows. A plain value.
class PanelGeometry {
public:
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
    /// How many headers stand above this row, including its own.
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
    /// The rows that are at least partly inside the body, counting their headers.
    [[nodiscard]] Range visibleRows(double scroll) const;
    /// The row at this point. Absent between rows, on headers and outside the body.
    [[nodiscard]] std::optional<int> rowAt(const Point& point, double scroll) const;
    /// The scroll position nearest to `scroll` that shows the whole row with its header and the inset around them.
    [[nodiscard]] double scrollShowing(int index, double scroll) const;

private:
    [[nodiscard]] bool isGrouped() const { return input_.layout == SwitcherLayout::grouped; }
    [[nodiscard]] double lineHeight() const { return panel_geometry::lineHeight(input_.layout); }
    [[nodiscard]] double lineSpacing() const { return panel_geometry::lineSpacing(input_.layout); }
    [[nodiscard]] bool startsGroup(int index) const;
    /// The top of the row, measured from the top of the scrolled content.
    [[nodiscard]] double rowTop(int index) const;
    [[nodiscard]] double contentHeight() const;
    /// The first row whose lower edge is below `offset` in the scrolled content.
    [[nodiscard]] int firstRowEndingBelow(double offset) const;

    Input input_;
};

}  // namespace ferrowyn
