#pragma once

#include <optional>
#include <vector>

#include "core/geometry.h"
#include "core/switcher_options.h"
#include "platform/screens.h"

/// How large the switcher's panel is and where it goes. Pure functions; points, y growing upward.
namespace ferrowyn::panel_geometry {

/// The heights of the panel's parts and the distances between them. The panel's size is computed from them, and its
/// content is laid out with them.
inline constexpr double searchLineHeight = 56;
inline constexpr double footerHeight = 34;
inline constexpr double groupHeaderHeight = 28;
/// Around the rows, on all four sides.
inline constexpr double rowsInset = 8;

/// Of one line of rows.
[[nodiscard]] constexpr double lineHeight(SwitcherLayout layout) {
    return layout == SwitcherLayout::grid ? 104 : 52;
}
/// Between two lines, and in the grid between two items of a line.
[[nodiscard]] constexpr double lineSpacing(SwitcherLayout layout) {
    return layout == SwitcherLayout::grid ? 6 : 1;
}

/// What the panel's size depends on apart from its rows.
struct Style {
    SwitcherLayout layout = SwitcherLayout::list;
    int maximumVisibleRows = 0;
    bool showsHints = false;
};

/// The parts of the rows that decide the panel's size.
struct RowShape {
    SwitcherLayout layout = SwitcherLayout::list;
    int rowCount = 0;
    /// Rows that start a group.
    int groupCount = 0;
    friend bool operator==(const RowShape&, const RowShape&) = default;
};

[[nodiscard]] double contentWidth(SwitcherLayout layout);
/// The height for this many rows, or of the empty state.
[[nodiscard]] double contentHeight(const Style& style, int rowCount, int groupCount);
/// The tallest that the panel can become with this style.
[[nodiscard]] double fullHeight(const Style& style);

/// The screen for the panel: the one under the pointer, else the main one, else the first, else an empty one.
[[nodiscard]] Screen chooseScreen(const std::vector<Screen>& screens, const std::optional<Screen>& main,
                                  const Point& pointer);

struct Placement {
    Rect frame;
    /// The edge that does not move during the session.
    double topY = 0;
    friend bool operator==(const Placement&, const Placement&) = default;
};

/// Where a session opens: as if the panel had its full height, a little above the middle. What does not fit between
/// the margins is cut off at the lower edge, where the rows scroll, so that the search field is always on the screen.
[[nodiscard]] Placement placement(const Rect& visibleFrame, const Size& content, double fullHeight);

/// The frame for new content during a session, with its top edge fixed; vertically centred without one.
[[nodiscard]] Rect refittedFrame(const Rect& visibleFrame, const Size& content, std::optional<double> topY);

}  // namespace ferrowyn::panel_geometry
