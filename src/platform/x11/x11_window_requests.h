#pragma once

#include <xcb/xcb.h>

#include <optional>

#include "platform/x11/x11_root_facts.h"
#include "platform/x11/x11_window_facts.h"

namespace ferrowyn {

/// The requests for one window's facts, sent when this is made; collecting waits for the answers. Making those of all
/// windows before collecting the first is what keeps a snapshot at a fixed number of round trips.
///
/// The owner is not among them: clients are asked for in bulk (`X11Owners`).
class X11WindowRequests {
public:
    /// What is `known` of the window from an earlier reading saves asking again for what rarely changes; null when
    /// nothing is. Copied by `collect`, so it lives until then.
    X11WindowRequests(xcb_connection_t* connection, xcb_window_t window, const X11RootFacts& root,
                      const X11Atoms& atoms, const X11WindowFacts* known);

    /// Nothing when the window has vanished. An absent `_NET_WM_NAME` leaves the title empty and sets `lacksTitle`.
    struct Answer {
        X11WindowFacts facts;
        bool lacksTitle = false;
    };
    [[nodiscard]] std::optional<Answer> collect(xcb_connection_t* connection, const X11Atoms& atoms) const;
    [[nodiscard]] bool isKnown() const { return known_ != nullptr; }

private:
    /// What a window says once, as a rule before it is shown.
    struct Lasting {
        xcb_get_property_cookie_t type;
        xcb_get_property_cookie_t transientFor;
        xcb_get_property_cookie_t hints;
        xcb_get_property_cookie_t opacity;
        xcb_get_property_cookie_t wmClass;
        xcb_get_property_cookie_t gtkApplicationId;
        xcb_get_property_cookie_t kdeDesktopFile;
    };
    void collectLasting(xcb_connection_t* connection, const X11Atoms& atoms, X11WindowFacts& facts) const;

    xcb_window_t window_;
    xcb_get_window_attributes_cookie_t attributes_;
    xcb_get_geometry_cookie_t geometry_;
    xcb_translate_coordinates_cookie_t position_;
    xcb_get_property_cookie_t state_;
    xcb_get_property_cookie_t desktop_;
    xcb_get_property_cookie_t name_;
    const X11WindowFacts* known_;
    std::optional<Lasting> lasting_;
    /// Only where the manager does not tell minimised windows in the newer way.
    std::optional<xcb_get_property_cookie_t> wmState_;
};

/// The request for a title of before `_NET_WM_NAME`.
[[nodiscard]] xcb_get_property_cookie_t requestLegacyTitle(xcb_connection_t* connection, xcb_window_t window);
[[nodiscard]] std::string collectLegacyTitle(xcb_connection_t* connection, xcb_get_property_cookie_t cookie,
                                             const X11Atoms& atoms);

}  // namespace ferrowyn
