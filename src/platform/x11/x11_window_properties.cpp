#include "platform/x11/x11_window_properties.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_text.h"

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
    // The list is in the order of preference. It may begin with types that only one toolkit or manager knows.
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

namespace {

/// In 32-bit units: 4 KiB. Some web pages set titles of megabytes; the server then sends only this much.
constexpr std::uint32_t maximumTitleLength = 1024;
constexpr std::uint32_t maximumNameLength = 256;
constexpr std::uint32_t maximumAtomCount = 64;
constexpr std::uint32_t hintsLength = 9;

constexpr std::uint32_t iconicState = 3;

xcb_get_property_cookie_t request(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                                  std::uint32_t length) {
    return xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, length);
}

/// The text of a property with one of the three text types; nullopt for another type.
std::optional<std::string> text(const X11Property& property, const X11Atoms& atoms) {
    if (const auto bytes = property.bytes(atoms.utf8String)) {
        return textFromProperty(*bytes, X11TextEncoding::utf8, property.isCut());
    }
    if (const auto bytes = property.bytes(XCB_ATOM_STRING)) {
        return textFromProperty(*bytes, X11TextEncoding::latin1, property.isCut());
    }
    if (const auto bytes = property.bytes(atoms.compoundText)) {
        return textFromProperty(*bytes, X11TextEncoding::compoundText, property.isCut());
    }
    return std::nullopt;
}

/// WM_CLASS is two strings that each end with a NUL. Some clients leave out the second string.
void readWmClass(const X11Property& property, X11ApplicationIdentity& identity) {
    const auto bytes = property.bytes(XCB_ATOM_STRING);
    if (!bytes) {
        return;
    }
    const auto end = bytes->find('\0');
    identity.wmClassInstance = textFromProperty(bytes->substr(0, end), X11TextEncoding::latin1, false);
    if (end != std::string_view::npos) {
        identity.wmClassName = textFromProperty(bytes->substr(end + 1), X11TextEncoding::latin1, property.isCut());
    }
}

void readState(const X11Property& property, const X11Atoms& atoms, X11WindowFacts& facts) {
    const auto states = property.items(XCB_ATOM_ATOM);
    const auto has = [&](xcb_atom_t state) { return std::ranges::find(states, state) != states.end(); };
    facts.isHidden = has(atoms.stateHidden);
    facts.isFullScreen = has(atoms.stateFullScreen);
    facts.skipsTaskbar = has(atoms.stateSkipTaskbar);
    facts.isModal = has(atoms.stateModal);
    facts.isAlwaysOnTop = has(atoms.stateAbove);
}

/// `_NET_WM_NAME`, otherwise WM_NAME.
std::string titleFrom(const X11Property& name, const X11Property& legacyName, const X11Atoms& atoms) {
    if (auto title = text(name, atoms)) {
        return std::move(*title);
    }
    return text(legacyName, atoms).value_or(std::string());
}

bool isMapped(const xcb_get_window_attributes_reply_t& attributes) {
    return attributes.map_state != XCB_MAP_STATE_UNMAPPED;
}

Size sizeOf(const xcb_get_geometry_reply_t& geometry) {
    return {static_cast<double>(geometry.width), static_cast<double>(geometry.height)};
}

Point positionOf(const xcb_translate_coordinates_reply_t& corner) {
    return {static_cast<double>(corner.dst_x), static_cast<double>(corner.dst_y)};
}

/// In WM_HINTS the flags come first and the window group last.
xcb_window_t readGroup(const X11Property& hints) {
    constexpr std::uint32_t windowGroupHint = 1U << 6U;
    const auto items = hints.items(XCB_ATOM_WM_HINTS);
    const bool hasGroup = items.size() >= hintsLength && (items.front() & windowGroupHint) != 0;
    return hasGroup ? items[hintsLength - 1] : xcb_window_t{XCB_WINDOW_NONE};
}

}  // namespace

X11WindowRequests::X11WindowRequests(xcb_connection_t* connection, xcb_window_t window, const X11RootFacts& root,
                                     const X11Atoms& atoms)
    : window_(window),
      attributes_(xcb_get_window_attributes(connection, window)),
      geometry_(xcb_get_geometry(connection, window)),
      position_(xcb_translate_coordinates(connection, window, root.root, 0, 0)),
      state_(request(connection, window, atoms.netWmState, maximumAtomCount)),
      desktop_(request(connection, window, atoms.netWmDesktop, 1)),
      name_(request(connection, window, atoms.netWmName, maximumTitleLength)),
      legacyName_(request(connection, window, XCB_ATOM_WM_NAME, maximumTitleLength)),
      type_(request(connection, window, atoms.netWmWindowType, maximumAtomCount)),
      transientFor_(request(connection, window, XCB_ATOM_WM_TRANSIENT_FOR, 1)),
      hints_(request(connection, window, XCB_ATOM_WM_HINTS, hintsLength)),
      opacity_(request(connection, window, atoms.netWmWindowOpacity, 1)),
      wmClass_(request(connection, window, XCB_ATOM_WM_CLASS, maximumNameLength)),
      gtkApplicationId_(request(connection, window, atoms.gtkApplicationId, maximumNameLength)),
      kdeDesktopFile_(request(connection, window, atoms.kdeDesktopFile, maximumNameLength)) {
    if (!root.supportsHiddenState) {
        wmState_ = request(connection, window, atoms.wmState, 2);
    }
}

std::optional<X11WindowFacts> X11WindowRequests::collect(xcb_connection_t* connection, const X11Atoms& atoms) const {
    // All replies are collected, also those of a destroyed window, because xcb keeps uncollected replies in memory.
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, attributes_, nullptr));
    const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection, geometry_, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> position(
        xcb_translate_coordinates_reply(connection, position_, nullptr));
    const auto property = [&](xcb_get_property_cookie_t cookie) { return X11Property::collect(connection, cookie); };
    const auto state = property(state_);
    const auto desktop = property(desktop_);
    const auto name = property(name_);
    const auto legacyName = property(legacyName_);
    const auto type = property(type_);
    const auto transientFor = property(transientFor_);
    const auto hints = property(hints_);
    const auto opacity = property(opacity_);
    const auto wmClass = property(wmClass_);
    const auto gtkApplicationId = property(gtkApplicationId_);
    const auto kdeDesktopFile = property(kdeDesktopFile_);
    const auto wmState = wmState_ ? property(*wmState_) : X11Property();
    if (attributes == nullptr) {
        return std::nullopt;
    }

    X11WindowFacts facts;
    facts.id = window_;
    facts.isMapped = isMapped(*attributes);
    if (geometry != nullptr && position != nullptr) {
        const auto corner = positionOf(*position);
        const auto size = sizeOf(*geometry);
        facts.frame = Rect{corner.x, corner.y, size.width, size.height};
    }
    facts.transientFor = transientFor.item(XCB_ATOM_WINDOW).value_or(XCB_WINDOW_NONE);
    facts.isTransient = facts.transientFor != XCB_WINDOW_NONE;
    facts.kind = windowKind(type.items(XCB_ATOM_ATOM), facts.isTransient, atoms);
    facts.group = readGroup(hints);
    if (const auto value = opacity.item(XCB_ATOM_CARDINAL)) {
        facts.opacity = static_cast<double>(*value) / std::numeric_limits<std::uint32_t>::max();
    }
    readWmClass(wmClass, facts.identity);
    facts.identity.gtkApplicationId = text(gtkApplicationId, atoms).value_or(std::string());
    facts.identity.kdeDesktopFile = text(kdeDesktopFile, atoms).value_or(std::string());
    readState(state, atoms, facts);
    if (facts.isTransient && facts.kind == X11WindowKind::dialog) {
        // xfwm4, metacity and mutter set "skip taskbar" on every dialog with a parent window, although users switch to
        // it.
        facts.skipsTaskbar = false;
    }
    if (wmState.item(atoms.wmState) == iconicState) {
        facts.isHidden = true;
    }
    facts.desktop = desktop.item(XCB_ATOM_CARDINAL);
    facts.title = titleFrom(name, legacyName, atoms);
    return facts;
}

X11WindowBatch::X11WindowBatch(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms,
                               const X11Owners& owners, const std::vector<xcb_window_t>& windows)
    : connection_(connection), atoms_(atoms), owners_(owners) {
    requests_.reserve(windows.size());
    claims_.reserve(windows.size());
    for (const auto window : windows) {
        requests_.emplace_back(connection, window, root, atoms);
        claims_.push_back(owners.requestClaim(window, atoms));
    }
    ownerRequest_ = owners.request(windows);
}

std::vector<X11WindowFacts> X11WindowBatch::collect() {
    std::vector<X11WindowFacts> windows;
    std::vector<std::optional<Pid>> claims;
    for (std::size_t index = 0; index < requests_.size(); ++index) {
        auto window = requests_[index].collect(connection_, atoms_);
        const auto claim = owners_.collectClaim(claims_[index]);
        if (window) {
            windows.push_back(std::move(*window));
            claims.push_back(claim);
        }
    }
    const auto processes = owners_.collect(ownerRequest_);
    for (std::size_t index = 0; index < windows.size(); ++index) {
        auto& window = windows[index];
        const auto process = processes.find(owners_.clientOf(window.id));
        window.process =
            process != processes.end() ? process->second : claims[index].value_or(owners_.standInFor(window.id));
    }
    return windows;
}

X11PassingRequests::X11PassingRequests(xcb_connection_t* connection, xcb_window_t window, xcb_window_t root,
                                       const X11Atoms& atoms, std::uint8_t parts, bool asksPosition)
    : window_(window) {
    if ((parts & Part::title) != 0) {
        name_ = request(connection, window, atoms.netWmName, maximumTitleLength);
        legacyName_ = request(connection, window, XCB_ATOM_WM_NAME, maximumTitleLength);
    }
    if ((parts & Part::mapping) != 0) {
        attributes_ = xcb_get_window_attributes(connection, window);
    }
    if ((parts & Part::size) != 0) {
        geometry_ = xcb_get_geometry(connection, window);
    }
    if (asksPosition) {
        position_ = xcb_translate_coordinates(connection, window, root, 0, 0);
    }
}

X11PassingFacts X11PassingRequests::collect(xcb_connection_t* connection, const X11Atoms& atoms) const {
    X11PassingFacts facts;
    if (name_) {
        const auto name = X11Property::collect(connection, *name_);
        const auto legacyName = X11Property::collect(connection, *legacyName_);
        facts.title = titleFrom(name, legacyName, atoms);
    }
    if (attributes_) {
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection, *attributes_, nullptr));
        facts.isMapped = attributes ? std::optional(isMapped(*attributes)) : std::nullopt;
    }
    if (geometry_) {
        const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection, *geometry_, nullptr));
        facts.size = geometry ? std::optional(sizeOf(*geometry)) : std::nullopt;
    }
    if (position_) {
        const XcbReply<xcb_translate_coordinates_reply_t> position(
            xcb_translate_coordinates_reply(connection, *position_, nullptr));
        facts.position = position ? std::optional(positionOf(*position)) : std::nullopt;
    }
    return facts;
}

}  // namespace ferrowyn
