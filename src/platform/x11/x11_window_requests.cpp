#include "platform/x11/x11_window_requests.h"

#include <algorithm>
#include <limits>

#include "platform/x11/x11_property.h"
#include "platform/x11/x11_text.h"

namespace ferrowyn {
namespace {

/// In 32-bit units. A title of 4 KiB fills several screens; one of megabytes, which some pages set, is cut there by the
/// server, so that it never crosses the wire.
constexpr std::uint32_t maximumTitleLength = 1024;
constexpr std::uint32_t maximumNameLength = 256;
constexpr std::uint32_t maximumAtomCount = 64;
constexpr std::uint32_t hintsLength = 9;

constexpr std::uint32_t iconicState = 3;

xcb_get_property_cookie_t request(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                                  std::uint32_t length) {
    return xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, length);
}

/// Text in whichever of the three encodings its type names; nothing for any other type.
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

/// WM_CLASS is two strings, each ended by a NUL, of which sloppy clients leave out the second.
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

/// WM_HINTS: flags first, the group's window last.
xcb_window_t readGroup(const X11Property& hints) {
    constexpr std::uint32_t windowGroupHint = 1U << 6U;
    const auto items = hints.items(XCB_ATOM_WM_HINTS);
    const bool hasGroup = items.size() >= hintsLength && (items.front() & windowGroupHint) != 0;
    return hasGroup ? items[hintsLength - 1] : xcb_window_t{XCB_WINDOW_NONE};
}

}  // namespace

X11WindowRequests::X11WindowRequests(xcb_connection_t* connection, xcb_window_t window, const X11RootFacts& root,
                                     const X11Atoms& atoms, const X11WindowFacts* known)
    : window_(window),
      attributes_(xcb_get_window_attributes(connection, window)),
      geometry_(xcb_get_geometry(connection, window)),
      position_(xcb_translate_coordinates(connection, window, root.root, 0, 0)),
      state_(request(connection, window, atoms.netWmState, maximumAtomCount)),
      desktop_(request(connection, window, atoms.netWmDesktop, 1)),
      name_(request(connection, window, atoms.netWmName, maximumTitleLength)),
      known_(known) {
    if (known_ == nullptr) {
        lasting_ = Lasting{.type = request(connection, window, atoms.netWmWindowType, maximumAtomCount),
                           .transientFor = request(connection, window, XCB_ATOM_WM_TRANSIENT_FOR, 1),
                           .hints = request(connection, window, XCB_ATOM_WM_HINTS, hintsLength),
                           .opacity = request(connection, window, atoms.netWmWindowOpacity, 1),
                           .wmClass = request(connection, window, XCB_ATOM_WM_CLASS, maximumNameLength),
                           .gtkApplicationId = request(connection, window, atoms.gtkApplicationId, maximumNameLength),
                           .kdeDesktopFile = request(connection, window, atoms.kdeDesktopFile, maximumNameLength)};
    }
    if (!root.supportsHiddenState) {
        wmState_ = request(connection, window, atoms.wmState, 2);
    }
}

std::optional<X11WindowRequests::Answer> X11WindowRequests::collect(xcb_connection_t* connection,
                                                                    const X11Atoms& atoms) const {
    // Every answer is taken, also those of a window that has vanished: one left over would stay in xcb's memory.
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection, attributes_, nullptr));
    const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection, geometry_, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> position(
        xcb_translate_coordinates_reply(connection, position_, nullptr));
    const auto state = X11Property::collect(connection, state_);
    const auto desktop = X11Property::collect(connection, desktop_);
    const auto name = X11Property::collect(connection, name_);
    Answer answer;
    auto& facts = answer.facts;
    collectLasting(connection, atoms, facts);
    const auto wmState = wmState_ ? X11Property::collect(connection, *wmState_) : X11Property();
    if (attributes == nullptr) {
        return std::nullopt;
    }

    facts.id = window_;
    facts.isMapped = attributes->map_state != XCB_MAP_STATE_UNMAPPED;
    if (geometry != nullptr && position != nullptr) {
        facts.frame = Rect{static_cast<double>(position->dst_x), static_cast<double>(position->dst_y),
                           static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
    }
    readState(state, atoms, facts);
    if (facts.isTransient && facts.kind == X11WindowKind::dialog) {
        // xfwm4, metacity and mutter keep every dialog of a window off their taskbars, whether it asked for that or
        // not; the user still switches to it.
        facts.skipsTaskbar = false;
    }
    if (wmState.item(atoms.wmState) == iconicState) {
        facts.isHidden = true;
    }
    facts.desktop = desktop.item(XCB_ATOM_CARDINAL);
    if (auto title = text(name, atoms)) {
        facts.title = std::move(*title);
    } else {
        answer.lacksTitle = true;
    }
    return answer;
}

void X11WindowRequests::collectLasting(xcb_connection_t* connection, const X11Atoms& atoms,
                                       X11WindowFacts& facts) const {
    if (known_ != nullptr) {
        facts.process = known_->process;
        facts.kind = known_->kind;
        facts.isTransient = known_->isTransient;
        facts.transientFor = known_->transientFor;
        facts.group = known_->group;
        facts.opacity = known_->opacity;
        facts.identity = known_->identity;
        return;
    }
    const auto type = X11Property::collect(connection, lasting_->type);
    const auto transientFor = X11Property::collect(connection, lasting_->transientFor);
    facts.transientFor = transientFor.item(XCB_ATOM_WINDOW).value_or(XCB_WINDOW_NONE);
    facts.isTransient = facts.transientFor != XCB_WINDOW_NONE;
    facts.kind = windowKind(type.items(XCB_ATOM_ATOM), facts.isTransient, atoms);
    facts.group = readGroup(X11Property::collect(connection, lasting_->hints));
    if (const auto value = X11Property::collect(connection, lasting_->opacity).item(XCB_ATOM_CARDINAL)) {
        facts.opacity = static_cast<double>(*value) / std::numeric_limits<std::uint32_t>::max();
    }
    readWmClass(X11Property::collect(connection, lasting_->wmClass), facts.identity);
    const auto textOf = [&](xcb_get_property_cookie_t cookie) {
        return text(X11Property::collect(connection, cookie), atoms).value_or(std::string());
    };
    facts.identity.gtkApplicationId = textOf(lasting_->gtkApplicationId);
    facts.identity.kdeDesktopFile = textOf(lasting_->kdeDesktopFile);
}

xcb_get_property_cookie_t requestLegacyTitle(xcb_connection_t* connection, xcb_window_t window) {
    return request(connection, window, XCB_ATOM_WM_NAME, maximumTitleLength);
}

std::string collectLegacyTitle(xcb_connection_t* connection, xcb_get_property_cookie_t cookie, const X11Atoms& atoms) {
    return text(X11Property::collect(connection, cookie), atoms).value_or(std::string());
}

}  // namespace ferrowyn
