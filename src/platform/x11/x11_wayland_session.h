#pragma once

#include <xcb/xcb.h>

namespace ferrowyn {

/// Whether this X server is one that a Wayland compositor runs for old programs. Such a server is told the keys of its
/// own clients only. A few round trips.
[[nodiscard]] bool isServerOfWaylandSession(xcb_connection_t* connection, xcb_window_t root);

/// Why the program cannot work there, for the user.
inline constexpr const char* waylandExplanation =
    "This is a Wayland session. Ferrowyn supports X11 so far: under Wayland no program sees the keys that go to "
    "another one, so its shortcut cannot be captured, XWayland included. Log in to an X11 session to use it.";

}  // namespace ferrowyn
