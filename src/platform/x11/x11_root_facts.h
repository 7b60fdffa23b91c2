#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/x11/x11_atoms.h"

namespace ferrowyn {

/// What the window manager publishes on the root window.
struct X11RootFacts {
    xcb_window_t root = XCB_WINDOW_NONE;
    /// Bottom-most first; nothing when the manager publishes no list (it is starting, or gone).
    std::optional<std::vector<xcb_window_t>> stacking;
    std::optional<std::uint32_t> currentDesktop;
    /// None while no window is active, which some managers say in passing on every switch.
    xcb_window_t activeWindow = XCB_WINDOW_NONE;
    /// The manager's own window, which proves that it runs as long as that window says the same of itself.
    xcb_window_t supportingWmCheck = XCB_WINDOW_NONE;
    /// The manager tells minimised windows by `_NET_WM_STATE_HIDDEN`. Where it does, an iconic WM_STATE alone means
    /// nothing: some managers give that to every window of another desktop.
    bool supportsHiddenState = false;
    bool supportsRestacking = false;
};

/// The requests for `X11RootFacts`, sent together; collecting waits for the answers.
class X11RootRequests {
public:
    X11RootRequests(xcb_connection_t* connection, xcb_window_t root, const X11Atoms& atoms);
    [[nodiscard]] X11RootFacts collect(xcb_connection_t* connection, const X11Atoms& atoms) const;

private:
    xcb_window_t root_;
    xcb_get_property_cookie_t stacking_;
    xcb_get_property_cookie_t clientList_;
    xcb_get_property_cookie_t currentDesktop_;
    xcb_get_property_cookie_t activeWindow_;
    xcb_get_property_cookie_t supportingWmCheck_;
    xcb_get_property_cookie_t supported_;
};

}  // namespace ferrowyn
