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

/// In WM_HINTS the flags come first and the window group last.
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
    // All replies are collected, also those of a destroyed window, because xcb keeps uncollected replies in memory.
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
        // xfwm4, metacity and mutter set "skip taskbar" on every dialog with a parent window, although users switch to
        // it.
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

X11WindowBatch::X11WindowBatch(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms,
                               const X11Owners& owners, const std::vector<xcb_window_t>& windows, Fallbacks fallbacks,
                               const KnownWindows& known)
    : connection_(connection), atoms_(atoms), owners_(owners) {
    requests_.reserve(windows.size());
    std::vector<xcb_window_t> newWindows;
    for (const auto window : windows) {
        const auto found = known.find(window);
        requests_.emplace_back(connection, window, root, atoms, found == known.end() ? nullptr : &found->second);
        if (found == known.end()) {
            newWindows.push_back(window);
        }
        if (fallbacks == Fallbacks::atOnceWithoutTitles) {
            claims_.push_back(owners.requestClaim(window, atoms));
        }
    }
    ownerRequest_ = owners.request(newWindows);
}

X11WindowBatch::Answer X11WindowBatch::collect() {
    Answer answer;
    if (requests_.empty()) {
        return answer;
    }
    ++answer.roundTrips;
    struct Needs {
        bool lacksTitle = false;
        bool isKnown = false;
        std::optional<Pid> claim;
    };
    std::vector<Needs> needs;
    for (std::size_t index = 0; index < requests_.size(); ++index) {
        auto window = requests_[index].collect(connection_, atoms_);
        const auto claim = claims_.empty() ? std::nullopt : owners_.collectClaim(claims_[index]);
        if (window) {
            answer.windows.push_back(std::move(window->facts));
            needs.push_back({window->lacksTitle && claims_.empty(), requests_[index].isKnown(), claim});
        }
    }
    const auto processes = owners_.collect(ownerRequest_);

    std::vector<Fallback> fallbacks;
    for (std::size_t index = 0; index < answer.windows.size(); ++index) {
        auto& window = answer.windows[index];
        const auto process = processes.find(owners_.clientOf(window.id));
        const auto& [lacksTitle, isKnown, claim] = needs[index];
        if (!isKnown) {
            window.process =
                process != processes.end() ? process->second : claim.value_or(owners_.standInFor(window.id));
        }
        Fallback fallback;
        fallback.index = index;
        if (lacksTitle) {
            fallback.title = requestLegacyTitle(connection_, window.id);
        }
        if (!isKnown && process == processes.end() && claims_.empty()) {
            fallback.claim = owners_.requestClaim(window.id, atoms_);
        }
        if (fallback.title || fallback.claim) {
            fallbacks.push_back(fallback);
        }
    }
    if (!fallbacks.empty()) {
        ++answer.roundTrips;
        collectFallbacks(fallbacks, answer.windows);
    }
    return answer;
}

void X11WindowBatch::collectFallbacks(const std::vector<Fallback>& fallbacks,
                                      std::vector<X11WindowFacts>& windows) const {
    for (const auto& fallback : fallbacks) {
        auto& window = windows[fallback.index];
        if (fallback.title) {
            window.title = collectLegacyTitle(connection_, *fallback.title, atoms_);
        }
        if (fallback.claim) {
            window.process = owners_.collectClaim(*fallback.claim).value_or(window.process);
        }
    }
}

}  // namespace ferrowyn
