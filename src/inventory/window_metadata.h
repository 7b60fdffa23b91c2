#pragma once

#include <cstdint>
#include <string>

#include "core/app_window.h"
#include "core/geometry.h"

namespace ferrowyn {

/// What the window server says about one window, with a default for whatever it kept to itself.
struct WindowMetadata {
    /// Position in the server's list, 0 = front-most.
    std::int64_t zOrder = 0;
    std::string ownerName;
    bool isOnScreen = false;
    bool isOnActiveSpace = false;
    /// Global coordinates in points, y growing downward; all zero when unknown.
    Rect bounds;
    double alpha = 1.0;
    std::int64_t layer = 0;
    Pid pid = 0;
};

}  // namespace ferrowyn
