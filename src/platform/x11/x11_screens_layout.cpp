#include "platform/x11/x11_screens_layout.h"

#include <algorithm>

namespace ferrowyn {
namespace {

struct Edges {
    int left, top, right, bottom;
    [[nodiscard]] bool isEmpty() const { return left >= right || top >= bottom; }
};

bool overlap(int start, int end, int otherStart, int otherEnd) {
    return start < otherEnd && otherStart < end;
}

}  // namespace

X11PixelRect visiblePart(const X11PixelRect& monitor, const std::vector<X11Strut>& struts, int rootWidth,
                         int rootHeight) {
    Edges part{monitor.x, monitor.y, monitor.x + monitor.width, monitor.y + monitor.height};
    const Edges whole = part;
    const auto reserve = [&part](bool concerns, int Edges::*edge, int limit, bool isLowerEdge) {
        Edges reduced = part;
        reduced.*edge = isLowerEdge ? std::max(part.*edge, limit) : std::min(part.*edge, limit);
        if (concerns && !reduced.isEmpty()) {
            part = reduced;
        }
    };
    for (const auto& strut : struts) {
        reserve(strut.left > 0 && overlap(strut.leftStart, strut.leftEnd + 1, whole.top, whole.bottom), &Edges::left,
                strut.left, true);
        reserve(strut.right > 0 && overlap(strut.rightStart, strut.rightEnd + 1, whole.top, whole.bottom),
                &Edges::right, rootWidth - strut.right, false);
        reserve(strut.top > 0 && overlap(strut.topStart, strut.topEnd + 1, whole.left, whole.right), &Edges::top,
                strut.top, true);
        reserve(strut.bottom > 0 && overlap(strut.bottomStart, strut.bottomEnd + 1, whole.left, whole.right),
                &Edges::bottom, rootHeight - strut.bottom, false);
    }
    return {part.left, part.top, part.right - part.left, part.bottom - part.top};
}

X11PixelRect intersection(const X11PixelRect& one, const X11PixelRect& other) {
    const int left = std::max(one.x, other.x);
    const int top = std::max(one.y, other.y);
    const int right = std::min(one.x + one.width, other.x + other.width);
    const int bottom = std::min(one.y + one.height, other.y + other.height);
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

}  // namespace ferrowyn
