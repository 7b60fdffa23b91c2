#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/x11/x11_connection.h"

namespace ferrowyn {

/// The atoms of the window-manager conventions that the inventory, the activation and the trust need, interned in one
/// round trip. Atoms are the same on every connection to a server, so one table serves all threads.
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

/// More windows than any user has; a list without end must not be read without end.
inline constexpr std::uint32_t maximumWindowListLength = 4096;

/// The windows that a list names, each once and without the root, in the list's order. Any client can write such a
/// list.
[[nodiscard]] std::vector<xcb_window_t> windowsNamedBy(const X11Property& list, xcb_window_t root);

/// What the window manager publishes on the root window.
struct X11RootFacts {
    xcb_window_t root = XCB_WINDOW_NONE;
    /// Bottom-most first; nothing when there is no list: see `X11ListPublisher`.
    std::optional<std::vector<xcb_window_t>> stacking;
    /// There is something under a list's name, though no list: not the manager's doing.
    bool isListMalformed = false;
    std::optional<std::uint32_t> currentDesktop;
    /// None while no window is active, which some managers say in passing on every switch.
    xcb_window_t activeWindow = XCB_WINDOW_NONE;
    /// The manager's own window, which proves that it runs as long as that window says the same of itself.
    xcb_window_t supportingWmCheck = XCB_WINDOW_NONE;
    /// The manager tells minimised windows by `_NET_WM_STATE_HIDDEN`. Where it does, an iconic WM_STATE alone means
    /// nothing: some managers give that to every window of another desktop.
    bool supportsHiddenState = false;
    bool supportsRestacking = false;
    /// The manager is Window Maker, which leaves a full-screen window above all others when one of them is activated.
    bool keepsFullScreenOnTop = false;
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
    xcb_get_property_cookie_t noticeBoard_;
};

/// Looks for the proof that a manager runs: a window of its own that says the same of itself as the root does. Any
/// client can write another window's name on the root, which is no reason to take a manager for gone whose window is
/// still there; so the latest one that was proven is asked as well.
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
    /// The running manager's window; None when no manager runs. Waits for the answers.
    [[nodiscard]] xcb_window_t collect(xcb_connection_t* connection, const Requests& requests);

private:
    /// Of the latest answers.
    xcb_window_t proven_ = XCB_WINDOW_NONE;
};

/// Tells an empty list from one that is missing in passing. Some managers delete their list when the last window has
/// gone, so no list is an empty one as long as the manager runs that had published one. A manager that has not
/// published any is starting: the windows that its predecessor listed are still there.
class X11ListPublisher {
public:
    /// `manager` as `X11ManagerCheck` finds it.
    void settle(X11RootFacts& root, xcb_window_t manager);

private:
    xcb_window_t publisher_ = XCB_WINDOW_NONE;
};

}  // namespace ferrowyn
