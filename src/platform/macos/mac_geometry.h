#pragma once

#import <Foundation/Foundation.h>

#include "core/geometry.h"

namespace ferrowyn {

// The main screen's lower left corner is the origin and y grows upward, for the system as for `Screens`.

[[nodiscard]] inline Rect fromNSRect(NSRect rect) {
    return {.x = rect.origin.x, .y = rect.origin.y, .width = rect.size.width, .height = rect.size.height};
}

[[nodiscard]] inline NSRect toNSRect(const Rect& rect) {
    return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

}  // namespace ferrowyn
