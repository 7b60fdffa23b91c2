#include "platform/x11/x11_root_facts.h"

#include <algorithm>

#include "platform/x11/x11_property.h"

namespace ferrowyn {
namespace {

/// More windows than any user has; a list without end must not be read without end.
constexpr std::uint32_t maximumListLength = 16384;

xcb_get_property_cookie_t request(xcb_connection_t* connection, xcb_window_t root, xcb_atom_t property,
                                  std::uint32_t length) {
    return xcb_get_property(connection, 0, root, property, XCB_GET_PROPERTY_TYPE_ANY, 0, length);
}

}  // namespace

X11RootRequests::X11RootRequests(xcb_connection_t* connection, xcb_window_t root, const X11Atoms& atoms)
    : root_(root),
      stacking_(request(connection, root, atoms.netClientListStacking, maximumListLength)),
      clientList_(request(connection, root, atoms.netClientList, maximumListLength)),
      currentDesktop_(request(connection, root, atoms.netCurrentDesktop, 1)),
      activeWindow_(request(connection, root, atoms.netActiveWindow, 1)),
      supportingWmCheck_(request(connection, root, atoms.netSupportingWmCheck, 1)),
      supported_(request(connection, root, atoms.netSupported, maximumListLength)) {}

X11RootFacts X11RootRequests::collect(xcb_connection_t* connection, const X11Atoms& atoms) const {
    X11RootFacts facts;
    facts.root = root_;
    const auto stacking = X11Property::collect(connection, stacking_);
    const auto clientList = X11Property::collect(connection, clientList_);
    // Managers that do not stack publish the mapping order alone, which is the best there is.
    const auto& list = stacking.type() == XCB_ATOM_WINDOW ? stacking : clientList;
    if (list.type() == XCB_ATOM_WINDOW) {
        const auto windows = list.items(XCB_ATOM_WINDOW);
        facts.stacking.emplace(windows.begin(), windows.end());
    }
    facts.currentDesktop = X11Property::collect(connection, currentDesktop_).item(XCB_ATOM_CARDINAL);
    facts.activeWindow = X11Property::collect(connection, activeWindow_).item(XCB_ATOM_WINDOW).value_or(0);
    facts.supportingWmCheck = X11Property::collect(connection, supportingWmCheck_).item(XCB_ATOM_WINDOW).value_or(0);
    const auto supportedProperty = X11Property::collect(connection, supported_);
    const auto supported = supportedProperty.items(XCB_ATOM_ATOM);
    facts.supportsHiddenState = std::ranges::find(supported, atoms.stateHidden) != supported.end();
    facts.supportsRestacking = std::ranges::find(supported, atoms.netRestackWindow) != supported.end();
    return facts;
}

}  // namespace ferrowyn
