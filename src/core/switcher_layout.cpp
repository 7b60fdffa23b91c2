#include "core/switcher_layout.h"

#include <algorithm>

namespace ferrowyn {

namespace {

constexpr int gridColumns = 5;
/// How many rows of the list one line of cards stands for.
constexpr int listRowsPerGridLine = 3;

int dividedRoundingUp(int dividend, int divisor) {
    return dividend / divisor + (dividend % divisor > 0 ? 1 : 0);
}

}  // namespace

std::string_view rawValue(SwitcherLayout layout) {
    switch (layout) {
        case SwitcherLayout::list:
            return "list";
        case SwitcherLayout::grouped:
            return "grouped";
        case SwitcherLayout::grid:
            return "grid";
    }
    return "list";
}

std::optional<SwitcherLayout> switcherLayoutFromRawValue(std::string_view raw) {
    for (const auto layout : allSwitcherLayouts) {
        if (rawValue(layout) == raw) {
            return layout;
        }
    }
    return std::nullopt;
}

std::string_view title(SwitcherLayout layout) {
    switch (layout) {
        case SwitcherLayout::list:
            return "List";
        case SwitcherLayout::grouped:
            return "Grouped";
        case SwitcherLayout::grid:
            return "Grid";
    }
    return "List";
}

int columns(SwitcherLayout layout) {
    return layout == SwitcherLayout::grid ? gridColumns : 1;
}

int lineCount(SwitcherLayout layout, int items) {
    return items < 1 ? 0 : dividedRoundingUp(items, columns(layout));
}

int visibleLineCount(SwitcherLayout layout, int maximumRows) {
    const int lines =
        layout == SwitcherLayout::grid ? dividedRoundingUp(maximumRows, listRowsPerGridLine) : maximumRows;
    return std::max(lines, 1);
}

SwitcherLayout nextLayout(SwitcherLayout layout) {
    const auto* const found = std::find(allSwitcherLayouts.begin(), allSwitcherLayouts.end(), layout);
    if (found == allSwitcherLayouts.end() || found + 1 == allSwitcherLayouts.end()) {
        return allSwitcherLayouts.front();
    }
    return *(found + 1);
}

}  // namespace ferrowyn
