#include "platform/x11/x11_root_properties.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <unordered_set>

namespace ferrowyn {

namespace {

struct AtomName {
    std::string_view name;
    xcb_atom_t X11Atoms::*member;
};

constexpr std::array atomNames{
    AtomName{"UTF8_STRING", &X11Atoms::utf8String},
    AtomName{"COMPOUND_TEXT", &X11Atoms::compoundText},
    AtomName{"WM_STATE", &X11Atoms::wmState},
    AtomName{"_NET_SUPPORTED", &X11Atoms::netSupported},
    AtomName{"_NET_SUPPORTING_WM_CHECK", &X11Atoms::netSupportingWmCheck},
    AtomName{"_NET_CLIENT_LIST", &X11Atoms::netClientList},
    AtomName{"_NET_CLIENT_LIST_STACKING", &X11Atoms::netClientListStacking},
    AtomName{"_NET_ACTIVE_WINDOW", &X11Atoms::netActiveWindow},
    AtomName{"_NET_CURRENT_DESKTOP", &X11Atoms::netCurrentDesktop},
    AtomName{"_NET_RESTACK_WINDOW", &X11Atoms::netRestackWindow},
    AtomName{"_WINDOWMAKER_NOTICEBOARD", &X11Atoms::windowMakerNoticeBoard},
    AtomName{"_NET_WM_NAME", &X11Atoms::netWmName},
    AtomName{"_NET_WM_PID", &X11Atoms::netWmPid},
    AtomName{"_NET_WM_DESKTOP", &X11Atoms::netWmDesktop},
    AtomName{"_NET_WM_ICON", &X11Atoms::netWmIcon},
    AtomName{"_NET_WM_WINDOW_OPACITY", &X11Atoms::netWmWindowOpacity},
    AtomName{"_GTK_APPLICATION_ID", &X11Atoms::gtkApplicationId},
    AtomName{"_KDE_NET_WM_DESKTOP_FILE", &X11Atoms::kdeDesktopFile},
    AtomName{"_NET_WM_STATE", &X11Atoms::netWmState},
    AtomName{"_NET_WM_STATE_HIDDEN", &X11Atoms::stateHidden},
    AtomName{"_NET_WM_STATE_FULLSCREEN", &X11Atoms::stateFullScreen},
    AtomName{"_NET_WM_STATE_ABOVE", &X11Atoms::stateAbove},
    AtomName{"_NET_WM_STATE_BELOW", &X11Atoms::stateBelow},
    AtomName{"_NET_WM_STATE_MODAL", &X11Atoms::stateModal},
    AtomName{"_NET_WM_STATE_SKIP_TASKBAR", &X11Atoms::stateSkipTaskbar},
    AtomName{"_NET_WM_WINDOW_TYPE", &X11Atoms::netWmWindowType},
    AtomName{"_NET_WM_WINDOW_TYPE_NORMAL", &X11Atoms::typeNormal},
    AtomName{"_NET_WM_WINDOW_TYPE_DIALOG", &X11Atoms::typeDialog},
    AtomName{"_NET_WM_WINDOW_TYPE_DESKTOP", &X11Atoms::typeDesktop},
    AtomName{"_NET_WM_WINDOW_TYPE_DOCK", &X11Atoms::typeDock},
    AtomName{"_NET_WM_WINDOW_TYPE_UTILITY", &X11Atoms::typeUtility},
    AtomName{"_NET_WM_WINDOW_TYPE_TOOLBAR", &X11Atoms::typeToolbar},
    AtomName{"_NET_WM_WINDOW_TYPE_MENU", &X11Atoms::typeMenu},
    AtomName{"_NET_WM_WINDOW_TYPE_SPLASH", &X11Atoms::typeSplash},
    AtomName{"_NET_WM_WINDOW_TYPE_DROPDOWN_MENU", &X11Atoms::typeDropdownMenu},
    AtomName{"_NET_WM_WINDOW_TYPE_POPUP_MENU", &X11Atoms::typePopupMenu},
    AtomName{"_NET_WM_WINDOW_TYPE_TOOLTIP", &X11Atoms::typeTooltip},
    AtomName{"_NET_WM_WINDOW_TYPE_NOTIFICATION", &X11Atoms::typeNotification},
    AtomName{"_NET_WM_WINDOW_TYPE_COMBO", &X11Atoms::typeCombo},
    AtomName{"_NET_WM_WINDOW_TYPE_DND", &X11Atoms::typeDragAndDrop},
};

}  // namespace

X11Atoms::X11Atoms(const X11Connection& connection) {
    std::vector<std::string_view> names;
    names.reserve(atomNames.size());
    for (const auto& entry : atomNames) {
        names.push_back(entry.name);
    }
    const auto atoms = connection.internAtoms(names);
    for (std::size_t index = 0; index < atomNames.size(); ++index) {
        this->*atomNames[index].member = atoms[index];
    }
}

namespace {

constexpr std::uint32_t maximumSupportedLength = 4096;

xcb_get_property_cookie_t request(xcb_connection_t* connection, xcb_window_t root, xcb_atom_t property,
                                  std::uint32_t length) {
    return xcb_get_property(connection, 0, root, property, XCB_GET_PROPERTY_TYPE_ANY, 0, length);
}

}  // namespace

std::vector<xcb_window_t> windowsNamedBy(const X11Property& list, xcb_window_t root) {
    std::vector<xcb_window_t> windows;
    std::unordered_set<xcb_window_t> seen{root, XCB_WINDOW_NONE};
    for (const auto window : list.items(XCB_ATOM_WINDOW)) {
        if (seen.insert(window).second) {
            windows.push_back(window);
        }
    }
    return windows;
}

X11RootRequests::X11RootRequests(xcb_connection_t* connection, xcb_window_t root, const X11Atoms& atoms)
    : root_(root),
      stacking_(request(connection, root, atoms.netClientListStacking, maximumWindowListLength)),
      clientList_(request(connection, root, atoms.netClientList, maximumWindowListLength)),
      currentDesktop_(request(connection, root, atoms.netCurrentDesktop, 1)),
      activeWindow_(request(connection, root, atoms.netActiveWindow, 1)),
      supportingWmCheck_(request(connection, root, atoms.netSupportingWmCheck, 1)),
      supported_(request(connection, root, atoms.netSupported, maximumSupportedLength)),
      noticeBoard_(request(connection, root, atoms.windowMakerNoticeBoard, 1)) {}

X11RootFacts X11RootRequests::collect(xcb_connection_t* connection, const X11Atoms& atoms) const {
    X11RootFacts facts;
    facts.root = root_;
    const auto stacking = X11Property::collect(connection, stacking_);
    const auto clientList = X11Property::collect(connection, clientList_);
    // Some managers publish only the list in mapping order.
    const auto& list = stacking.type() == XCB_ATOM_WINDOW ? stacking : clientList;
    if (list.type() == XCB_ATOM_WINDOW) {
        facts.stacking = windowsNamedBy(list, root_);
    }
    facts.isListMalformed = !facts.stacking && (stacking.exists() || clientList.exists());
    facts.currentDesktop = X11Property::collect(connection, currentDesktop_).item(XCB_ATOM_CARDINAL);
    facts.activeWindow = X11Property::collect(connection, activeWindow_).item(XCB_ATOM_WINDOW).value_or(0);
    facts.supportingWmCheck = X11Property::collect(connection, supportingWmCheck_).item(XCB_ATOM_WINDOW).value_or(0);
    const auto supportedProperty = X11Property::collect(connection, supported_);
    const auto supported = supportedProperty.items(XCB_ATOM_ATOM);
    facts.supportsHiddenState = std::ranges::find(supported, atoms.stateHidden) != supported.end();
    facts.supportsRestacking = std::ranges::find(supported, atoms.netRestackWindow) != supported.end();
    // The property stays after the manager was killed. It counts only when it names the present manager's window.
    const auto noticeBoard = X11Property::collect(connection, noticeBoard_).item(XCB_ATOM_WINDOW);
    facts.keepsFullScreenOnTop = noticeBoard && noticeBoard == facts.supportingWmCheck;
    return facts;
}

X11ManagerCheck::Requests X11ManagerCheck::request(xcb_connection_t* connection, const X11RootFacts& root,
                                                   const X11Atoms& atoms) const {
    const auto ask = [&](xcb_window_t window) {
        return xcb_get_property(connection, 0, window, atoms.netSupportingWmCheck, XCB_ATOM_WINDOW, 0, 1);
    };
    const auto named = root.supportingWmCheck;
    return {.root = root.root,
            .named = named,
            .answerOfNamed = ask(named),
            .proven = proven_,
            .answerOfProven = ask(proven_)};
}

xcb_window_t X11ManagerCheck::collect(xcb_connection_t* connection, const Requests& requests) {
    // The property on the root stays after the manager was killed. The window that it names is gone then, or belongs to
    // another client.
    const auto isProof = [&](xcb_window_t window, xcb_get_property_cookie_t answer) {
        const auto claimed = X11Property::collect(connection, answer).item(XCB_ATOM_WINDOW);
        return window != XCB_WINDOW_NONE && claimed == window;
    };
    const bool isNamedOneProven = isProof(requests.named, requests.answerOfNamed);
    const bool isProvenOneThere = isProof(requests.proven, requests.answerOfProven);
    // When the root's property names the root itself, the check always passes, also after the manager has ended. Any
    // other window that passes comes first.
    const bool isRootNamed = requests.named == requests.root;
    if (isNamedOneProven && !(isRootNamed && isProvenOneThere)) {
        proven_ = requests.named;
    } else if (!isProvenOneThere) {
        proven_ = XCB_WINDOW_NONE;
    }
    return proven_;
}

void X11ListPublisher::settle(X11RootFacts& root, xcb_window_t manager) {
    if (root.stacking) {
        publisher_ = manager;
    } else if (!root.isListMalformed && manager != XCB_WINDOW_NONE && manager == publisher_) {
        root.stacking.emplace();
    }
}

}  // namespace ferrowyn
