#pragma once

#include <xcb/xcb.h>

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

}  // namespace ferrowyn
