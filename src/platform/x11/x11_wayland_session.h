#pragma once

#include <xcb/xcb.h>

namespace ferrowyn {

/// Whether this X server is one that a Wayland compositor runs for old programs. Such a server is told the keys of its
/// own clients only. A few round trips.
[[nodiscard]] bool isServerOfWaylandSession(xcb_connection_t* connection, xcb_window_t root);

}  // namespace ferrowyn
