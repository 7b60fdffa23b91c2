#include "platform/x11/x11_window_facts.h"

namespace ferrowyn {
namespace {

std::optional<X11WindowKind> kindOfType(xcb_atom_t type, const X11Atoms& atoms) {
    if (type == XCB_ATOM_NONE) {
        return std::nullopt;
    }
    if (type == atoms.typeNormal) {
        return X11WindowKind::normal;
    }
    if (type == atoms.typeDialog) {
        return X11WindowKind::dialog;
    }
    if (type == atoms.typeDesktop) {
        return X11WindowKind::desktop;
    }
    if (type == atoms.typeDock) {
        return X11WindowKind::dock;
    }
    if (type == atoms.typeUtility || type == atoms.typeToolbar || type == atoms.typeSplash) {
        return X11WindowKind::auxiliary;
    }
    if (type == atoms.typeMenu || type == atoms.typeDropdownMenu || type == atoms.typePopupMenu ||
        type == atoms.typeTooltip || type == atoms.typeNotification || type == atoms.typeCombo ||
        type == atoms.typeDragAndDrop) {
        return X11WindowKind::transitory;
    }
    return std::nullopt;
}

}  // namespace

X11WindowKind windowKind(std::span<const std::uint32_t> types, bool isTransient, const X11Atoms& atoms) {
    // The list is in order of preference, and may begin with types that only one toolkit or manager knows.
    for (const auto type : types) {
        if (const auto kind = kindOfType(type, atoms)) {
            return *kind;
        }
    }
    return isTransient ? X11WindowKind::dialog : X11WindowKind::normal;
}

std::string subroleOf(const X11WindowFacts& window) {
    if (window.skipsTaskbar) {
        return "AXUnknown";
    }
    switch (window.kind) {
        case X11WindowKind::normal:
            return "AXStandardWindow";
        case X11WindowKind::dialog:
            return "AXDialog";
        case X11WindowKind::auxiliary:
            return "AXFloatingWindow";
        case X11WindowKind::desktop:
        case X11WindowKind::dock:
        case X11WindowKind::transitory:
            break;
    }
    return "AXUnknown";
}

std::int64_t layerOf(const X11WindowFacts& window) {
    switch (window.kind) {
        case X11WindowKind::normal:
        case X11WindowKind::dialog:
        case X11WindowKind::auxiliary:
            return 0;
        case X11WindowKind::desktop:
            return -1;
        case X11WindowKind::dock:
            return 1;
        case X11WindowKind::transitory:
            return 2;
    }
    return 0;
}

bool isOnScreen(const X11WindowFacts& window, std::optional<std::uint32_t> currentDesktop) {
    return window.isMapped && !window.isHidden && window.isOnDesktop(currentDesktop);
}

}  // namespace ferrowyn
