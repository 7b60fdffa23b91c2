#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/x11/x11_connection.h"

namespace ferrowyn {

/// The atoms that the inventory, the activation and the trust need, interned in one round trip. Immutable after that,
/// and the same on each connection to a server, so all threads share one table.
struct X11Atoms {
    explicit X11Atoms(const X11Connection& connection);

    xcb_atom_t utf8String = XCB_ATOM_NONE;
    xcb_atom_t compoundText = XCB_ATOM_NONE;
    xcb_atom_t wmState = XCB_ATOM_NONE;

    xcb_atom_t netSupported = XCB_ATOM_NONE;
    xcb_atom_t netSupportingWmCheck = XCB_ATOM_NONE;
    xcb_atom_t netClientList = XCB_ATOM_NONE;
    xcb_atom_t netClientListStacking = XCB_ATOM_NONE;
    xcb_atom_t netActiveWindow = XCB_ATOM_NONE;
    xcb_atom_t netCurrentDesktop = XCB_ATOM_NONE;
    xcb_atom_t netRestackWindow = XCB_ATOM_NONE;
    xcb_atom_t windowMakerNoticeBoard = XCB_ATOM_NONE;

    xcb_atom_t netWmName = XCB_ATOM_NONE;
    xcb_atom_t netWmPid = XCB_ATOM_NONE;
    xcb_atom_t netWmDesktop = XCB_ATOM_NONE;
    xcb_atom_t netWmIcon = XCB_ATOM_NONE;
    xcb_atom_t netWmWindowOpacity = XCB_ATOM_NONE;
    xcb_atom_t gtkApplicationId = XCB_ATOM_NONE;
    xcb_atom_t kdeDesktopFile = XCB_ATOM_NONE;

    xcb_atom_t netWmState = XCB_ATOM_NONE;
    xcb_atom_t stateHidden = XCB_ATOM_NONE;
    xcb_atom_t stateFullScreen = XCB_ATOM_NONE;
    xcb_atom_t stateAbove = XCB_ATOM_NONE;
    xcb_atom_t stateBelow = XCB_ATOM_NONE;
    xcb_atom_t stateModal = XCB_ATOM_NONE;
    xcb_atom_t stateSkipTaskbar = XCB_ATOM_NONE;

    xcb_atom_t netWmWindowType = XCB_ATOM_NONE;
    xcb_atom_t typeNormal = XCB_ATOM_NONE;
    xcb_atom_t typeDialog = XCB_ATOM_NONE;
    xcb_atom_t typeDesktop = XCB_ATOM_NONE;
    xcb_atom_t typeDock = XCB_ATOM_NONE;
    xcb_atom_t typeUtility = XCB_ATOM_NONE;
    xcb_atom_t typeToolbar = XCB_ATOM_NONE;
    xcb_atom_t typeMenu = XCB_ATOM_NONE;
    xcb_atom_t typeSplash = XCB_ATOM_NONE;
    xcb_atom_t typeDropdownMenu = XCB_ATOM_NONE;
    xcb_atom_t typePopupMenu = XCB_ATOM_NONE;
    xcb_atom_t typeTooltip = XCB_ATOM_NONE;
    xcb_atom_t typeNotification = XCB_ATOM_NONE;
    xcb_atom_t typeCombo = XCB_ATOM_NONE;
    xcb_atom_t typeDragAndDrop = XCB_ATOM_NONE;
};

/// In windows. A longer list, which any client can write, is cut.
inline constexpr std::uint32_t maximumWindowListLength = 4096;

/// The windows in a list property, in its order. Duplicates and the root window are left out: any client can write such
/// a list.
[[nodiscard]] std::vector<xcb_window_t> windowsNamedBy(const X11Property& list, xcb_window_t root);

/// What the window manager publishes on the root window.
struct X11RootFacts {
    xcb_window_t root = XCB_WINDOW_NONE;
    /// Bottom-most first; nullopt when there is no list, see `X11ListPublisher`.
    std::optional<std::vector<xcb_window_t>> stacking;
    /// A list property exists but is not a list of windows. Another client than the manager has written it.
    bool isListMalformed = false;
    std::optional<std::uint32_t> currentDesktop;
    /// None while no window is active. Some managers set None for a moment at each switch.
    xcb_window_t activeWindow = XCB_WINDOW_NONE;
    /// The manager's check window; see `X11ManagerCheck`.
    xcb_window_t supportingWmCheck = XCB_WINDOW_NONE;
    /// The manager marks minimised windows with `_NET_WM_STATE_HIDDEN`. Then an iconic WM_STATE does not count, because
    /// some managers set it on all windows of other desktops.
    bool supportsHiddenState = false;
    bool supportsRestacking = false;
    /// The manager is Window Maker, which keeps a full-screen window above a window that is activated.
    bool keepsFullScreenOnTop = false;
};

/// The requests for `X11RootFacts`. The constructor sends them together; `collect` waits for the replies.
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
    xcb_get_property_cookie_t noticeBoard_;
};

/// Checks whether a window manager runs. The root's `_NET_SUPPORTING_WM_CHECK` names a window, and the property on that
/// window must name it too. Any client can change the property on the root while the manager still runs, so the window
/// that passed the previous check is checked as well.
class X11ManagerCheck {
public:
    struct Requests {
        xcb_window_t root = XCB_WINDOW_NONE;
        xcb_window_t named = XCB_WINDOW_NONE;
        xcb_get_property_cookie_t answerOfNamed{};
        xcb_window_t proven = XCB_WINDOW_NONE;
        xcb_get_property_cookie_t answerOfProven{};
    };
    [[nodiscard]] Requests request(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms) const;
    /// The running manager's window; None when no manager runs. Waits for the replies.
    [[nodiscard]] xcb_window_t collect(xcb_connection_t* connection, const Requests& requests);

private:
    /// The window that passed the latest check.
    xcb_window_t proven_ = XCB_WINDOW_NONE;
};

/// Decides what a missing window list means. Some managers delete the list when the last window closes: if the manager
/// that published a list still runs, a missing list is an empty one. A manager that has not published a list yet is
/// starting, and the windows that the previous manager listed still exist.
class X11ListPublisher {
public:
    /// Sets `root.stacking` to an empty list where a missing one means that. `manager` is the window that
    /// `X11ManagerCheck` returned.
    void settle(X11RootFacts& root, xcb_window_t manager);

private:
    xcb_window_t publisher_ = XCB_WINDOW_NONE;
};

}  // namespace ferrowyn
