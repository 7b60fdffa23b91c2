#include "input/panel_geometry.h"

#include <algorithm>
#include <cmath>

namespace ferrowyn::panel_geometry {

namespace {

constexpr double listWidth = 640;
constexpr double gridWidth = 760;
constexpr double chromeHeight = searchLineHeight + 2 * rowsInset;
constexpr double emptyHeight = 188;

constexpr double screenMargin = 12;
/// The eye rests above the middle of a screen.
constexpr double raisedShare = 0.08;

double hintsPart(const Style& style) {
    return style.showsHints ? footerHeight : 0;
}

double heightOfLines(const Style& style, int lines, int headers) {
    const double headersPart = style.layout == SwitcherLayout::grouped ? groupHeaderHeight * headers : 0;
    return lineHeight(style.layout) * lines + lineSpacing(style.layout) * std::max(lines - 1, 0) + headersPart +
           chromeHeight + hintsPart(style);
}

double heightBetweenMargins(const Rect& visibleFrame) {
    return visibleFrame.height - 2 * screenMargin;
}

Rect hangingFrame(const Rect& visibleFrame, const Size& content, double topY) {
    // Without any screen there is nothing to fit into.
    const double available = heightBetweenMargins(visibleFrame);
    const double height = available > 0 ? std::min(content.height, available) : content.height;
    return {std::round(visibleFrame.midX() - content.width / 2),
            std::round(std::max(topY - height, visibleFrame.minY() + screenMargin)), content.width, height};
}

}  // namespace

double contentWidth(SwitcherLayout layout) {
    return layout == SwitcherLayout::grid ? gridWidth : listWidth;
}

double contentHeight(const Style& style, int rowCount, int groupCount) {
    if (rowCount < 1) {
        return emptyHeight + hintsPart(style);
    }
    const int lines =
        std::min(lineCount(style.layout, rowCount), visibleLineCount(style.layout, style.maximumVisibleRows));
    return heightOfLines(style, lines, std::min(lines, groupCount));
}

double fullHeight(const Style& style) {
    const int lines = visibleLineCount(style.layout, style.maximumVisibleRows);
    return heightOfLines(style, lines, lines);
}

Screen chooseScreen(const std::vector<Screen>& screens, const std::optional<Screen>& main, const Point& pointer) {
    const auto underPointer = std::find_if(screens.begin(), screens.end(),
                                           [&](const Screen& screen) { return screen.hasPointerAt(pointer); });
    if (underPointer != screens.end()) {
        return *underPointer;
    }
    if (main) {
        return *main;
    }
    return screens.empty() ? Screen{} : screens.front();
}

Placement placement(const Rect& visibleFrame, const Size& content, double fullHeight) {
    const double height = std::min(fullHeight, heightBetweenMargins(visibleFrame));
    const double raisedTop = visibleFrame.midY() - height / 2 + height + raisedShare * visibleFrame.height;
    const double topY = std::round(std::min(visibleFrame.maxY() - screenMargin, raisedTop));
    return {hangingFrame(visibleFrame, content, topY), topY};
}

Rect refittedFrame(const Rect& visibleFrame, const Size& content, std::optional<double> topY) {
    return hangingFrame(visibleFrame, content, topY.value_or(visibleFrame.midY() + content.height / 2));
}

}  // namespace ferrowyn::panel_geometry
