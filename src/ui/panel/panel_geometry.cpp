#include "ui/panel/panel_geometry.h"

#include <algorithm>
#include <utility>

namespace ferrowyn {

using panel_geometry::footerHeight;
using panel_geometry::groupHeaderHeight;
using panel_geometry::rowsInset;
using panel_geometry::searchLineHeight;

PanelGeometry::PanelGeometry(Input input) : input_(std::move(input)) {}

Rect PanelGeometry::searchLine() const {
    return {0, 0, input_.size.width, searchLineHeight};
}

Rect PanelGeometry::body() const {
    const double below = input_.showsFooter ? footerHeight : 0;
    return {0, searchLineHeight, input_.size.width, std::max(input_.size.height - searchLineHeight - below, 0.0)};
}

std::optional<Rect> PanelGeometry::footer() const {
    if (!input_.showsFooter) {
        return std::nullopt;
    }
    return Rect{0, input_.size.height - footerHeight, input_.size.width, footerHeight};
}

bool PanelGeometry::startsGroup(int index) const {
    return isGrouped() && std::binary_search(input_.groupStarts.begin(), input_.groupStarts.end(), index);
}

int PanelGeometry::headerCount() const {
    return isGrouped() ? static_cast<int>(input_.groupStarts.size()) : 0;
}

int PanelGeometry::headersUpTo(int index) const {
    if (!isGrouped()) {
        return 0;
    }
    const auto end = std::upper_bound(input_.groupStarts.begin(), input_.groupStarts.end(), index);
    return static_cast<int>(end - input_.groupStarts.begin());
}

double PanelGeometry::rowTop(int index) const {
    const int line = index / columns(input_.layout);
    return rowsInset + line * (lineHeight() + lineSpacing()) + headersUpTo(index) * groupHeaderHeight;
}

double PanelGeometry::contentHeight() const {
    return input_.rowCount < 1 ? 0 : rowTop(input_.rowCount - 1) + lineHeight() + rowsInset;
}

double PanelGeometry::maximumScroll() const {
    return std::max(contentHeight() - body().height, 0.0);
}

Rect PanelGeometry::row(int index, double scroll) const {
    const double top = body().minY() - scroll + rowTop(index);
    const double width = input_.size.width - 2 * rowsInset;
    const int perLine = columns(input_.layout);
    const double rowWidth = (width - (perLine - 1) * lineSpacing()) / perLine;
    return {rowsInset + index % perLine * (rowWidth + lineSpacing()), top, rowWidth, lineHeight()};
}

std::optional<Rect> PanelGeometry::header(int index, double scroll) const {
    if (!startsGroup(index)) {
        return std::nullopt;
    }
    const Rect below = row(index, scroll);
    return Rect{below.x, below.y - groupHeaderHeight, below.width, groupHeaderHeight};
}

int PanelGeometry::firstRowEndingBelow(double offset) const {
    int low = 0;
    int high = input_.rowCount;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (rowTop(middle) + lineHeight() > offset) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

PanelGeometry::Range PanelGeometry::visibleRows(double scroll) const {
    const double bottom = scroll + body().height;
    const int first = firstRowEndingBelow(scroll);
    int last = first;
    while (last < input_.rowCount && rowTop(last) - (startsGroup(last) ? groupHeaderHeight : 0) < bottom) {
        ++last;
    }
    return {first, last};
}

std::optional<int> PanelGeometry::rowAt(const Point& point, double scroll) const {
    if (!body().contains(point)) {
        return std::nullopt;
    }
    const auto [first, last] = visibleRows(scroll);
    for (int index = first; index < last; ++index) {
        if (row(index, scroll).contains(point)) {
            return index;
        }
    }
    return std::nullopt;
}

double PanelGeometry::scrollShowing(int index, double scroll) const {
    if (index < 0 || index >= input_.rowCount) {
        return std::clamp(scroll, 0.0, maximumScroll());
    }
    const double top = rowTop(index) - (startsGroup(index) ? groupHeaderHeight : 0) - rowsInset;
    const double bottom = rowTop(index) + lineHeight() + rowsInset;
    // In a body that is lower than one line, the row's top is shown.
    const double shown = std::min(std::max(scroll, bottom - body().height), top);
    return std::clamp(shown, 0.0, maximumScroll());
}

}  // namespace ferrowyn
