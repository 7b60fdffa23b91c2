#pragma once

#include <vector>

#include "platform/x11/x11_screens_coordinates.h"

namespace ferrowyn {

/// The edge strips that a dock keeps free: device pixels inward from the edges of the root window, each with the range
/// (inclusive) along its edge.
struct X11Strut {
    int left = 0, right = 0, top = 0, bottom = 0;
    int leftStart = 0, leftEnd = 0, rightStart = 0, rightEnd = 0;
    int topStart = 0, topEnd = 0, bottomStart = 0, bottomEnd = 0;
};

/// The part of a monitor that no dock covers. A strut that would leave nothing belongs to a dock on another monitor's
/// inner edge, and is passed over.
[[nodiscard]] X11PixelRect visiblePart(const X11PixelRect& monitor, const std::vector<X11Strut>& struts, int rootWidth,
                                       int rootHeight);

/// What both cover; of no extent when they are apart.
[[nodiscard]] X11PixelRect intersection(const X11PixelRect& one, const X11PixelRect& other);

}  // namespace ferrowyn
