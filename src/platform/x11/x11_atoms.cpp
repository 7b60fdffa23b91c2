#include "platform/x11/x11_atoms.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

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

}  // namespace ferrowyn
