#include "platform/x11/keyboard/x11_keyboard_reader.h"

#include <xcb/randr.h>
#include <xcb/screensaver.h>
#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <bit>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"
#include "platform/x11/xcb_xkb.h"

namespace ferrowyn {

namespace {

constexpr std::uint8_t responseTypeMask = 0x7F;

/// In pixels: how much of each edge a locker's window may leave uncovered. xsecurelock leaves one pixel, so that its
/// window does not count as full-screen.
constexpr int margin = 8;

bool covers(const xcb_get_geometry_reply_t& place, int x, int y, int width, int height) {
    return place.x <= x + margin && place.y <= y + margin && place.x + place.width >= x + width - margin &&
           place.y + place.height >= y + height - margin;
}

bool hasMonitors(const X11Connection& connection) {
    constexpr std::uint32_t major = 1;
    constexpr std::uint32_t minor = 5;
    const auto* const extension = xcb_get_extension_data(connection.get(), &xcb_randr_id);
    if (extension == nullptr || extension->present == 0) {
        return false;
    }
    const XcbReply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
        connection.get(), xcb_randr_query_version(connection.get(), major, minor), nullptr));
    return version != nullptr && std::pair(version->major_version, version->minor_version) >= std::pair(major, minor);
}

}  // namespace

X11LockerWatch::X11LockerWatch(const X11Connection& connection)
    : connection_(&connection), knowsMonitors_(hasMonitors(connection)) {
    const auto* const extension = xcb_get_extension_data(connection.get(), &xcb_screensaver_id);
    if (extension != nullptr && extension->present != 0) {
        screenSaverEvent_ = static_cast<std::uint8_t>(extension->first_event + XCB_SCREENSAVER_NOTIFY);
        xcb_screensaver_select_input(connection.get(), connection.root(), XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
    }
}

void X11LockerWatch::watchWindows(bool isWatching) const {
    const std::uint32_t events = isWatching ? XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(connection_->get(), connection_->root(), XCB_CW_EVENT_MASK, &events);
}

bool X11LockerWatch::isOfLocker(const xcb_generic_event_t& event) const {
    const auto type = static_cast<std::uint8_t>(event.response_type & responseTypeMask);
    if (type == screenSaverEvent_ && screenSaverEvent_ != 0) {
        const auto state = reinterpret_cast<const xcb_screensaver_notify_event_t&>(event).state;
        return state == XCB_SCREENSAVER_STATE_ON || state == XCB_SCREENSAVER_STATE_CYCLE;
    }
    // Some lockers map their window only after they have grabbed the keyboard, so its creation counts too.
    if (type == XCB_CREATE_NOTIFY) {
        const auto& created = reinterpret_cast<const xcb_create_notify_event_t&>(event);
        return created.override_redirect != 0 && coversAMonitor(created.window);
    }
    if (type == XCB_MAP_NOTIFY) {
        const auto& mapped = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        return mapped.override_redirect != 0 && coversAMonitor(mapped.window);
    }
    return false;
}

bool X11LockerWatch::coversAMonitor(xcb_window_t window) const {
    auto* const connection = connection_->get();
    const auto screenRequest = xcb_get_geometry(connection, connection_->root());
    const auto windowRequest = xcb_get_geometry(connection, window);
    std::optional<xcb_randr_get_monitors_cookie_t> monitorsRequest;
    if (knowsMonitors_) {
        monitorsRequest = xcb_randr_get_monitors(connection, connection_->root(), 1);
    }
    const XcbReply<xcb_get_geometry_reply_t> screen(xcb_get_geometry_reply(connection, screenRequest, nullptr));
    const XcbReply<xcb_get_geometry_reply_t> place(xcb_get_geometry_reply(connection, windowRequest, nullptr));
    const XcbReply<xcb_randr_get_monitors_reply_t> monitors(
        monitorsRequest ? xcb_randr_get_monitors_reply(connection, *monitorsRequest, nullptr) : nullptr);
    if (screen == nullptr || place == nullptr) {
        return false;
    }
    if (covers(*place, 0, 0, screen->width, screen->height)) {
        return true;
    }
    if (monitors != nullptr) {
        for (auto each = xcb_randr_get_monitors_monitors_iterator(monitors.get()); each.rem > 0;
             xcb_randr_monitor_info_next(&each)) {
            const auto& monitor = *each.data;
            if (covers(*place, monitor.x, monitor.y, monitor.width, monitor.height)) {
                return true;
            }
        }
    }
    return false;
}

namespace {

std::uint32_t pixel(xcb_input_fp1616_t position) {
    return position > 0 ? static_cast<std::uint32_t>(position) >> 16U : 0;
}

X11KeyboardEvent keyEvent(const xcb_input_key_press_event_t& key) {
    X11KeyboardEvent event;
    event.kind =
        key.event_type == XCB_INPUT_KEY_PRESS ? X11KeyboardEvent::Kind::press : X11KeyboardEvent::Kind::release;
    event.isRepeat = (key.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
    event.deviceId = key.deviceid;
    event.keyCode = key.detail;
    event.time = key.time;
    event.sequence = key.full_sequence;
    event.rootX = pixel(key.root_x);
    event.rootY = pixel(key.root_y);
    event.modifiers = {key.mods.base,  key.mods.latched,  key.mods.locked, key.mods.effective,
                       key.group.base, key.group.latched, key.group.locked};
    return event;
}

/// Selects hierarchy changes, which must be selected on all devices.
void selectHierarchyChanges(const X11Connection& connection) {
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t mask;
    } selection{{XCB_INPUT_DEVICE_ALL, 1}, XCB_INPUT_XI_EVENT_MASK_HIERARCHY};
    xcb_input_xi_select_events(connection.get(), connection.root(), 1, &selection.head);
}

void selectLayoutChanges(const X11Connection& connection) {
    constexpr std::uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t mapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                       XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_ACTIONS |
                                       XCB_XKB_MAP_PART_VIRTUAL_MODS | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    xcb_xkb_select_events_details_t details{};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    xcb_xkb_select_events_aux(connection.get(), XCB_XKB_ID_USE_CORE_KBD, events, 0, 0, mapParts, mapParts, &details);
}

}  // namespace

std::optional<X11KeyboardReader> X11KeyboardReader::create(const X11Connection& connection) {
    X11KeyboardReader reader(connection);
    const auto* const input = xcb_get_extension_data(connection.get(), &xcb_input_id);
    if (input == nullptr || input->present == 0) {
        return std::nullopt;
    }
    const XcbReply<xcb_input_xi_query_version_reply_t> version(xcb_input_xi_query_version_reply(
        connection.get(), xcb_input_xi_query_version(connection.get(), 2, 2), nullptr));
    if (version == nullptr || version->major_version < 2 || version->minor_version < 2) {
        return std::nullopt;
    }
    if (xkb_x11_setup_xkb_extension(connection.get(), XKB_X11_MIN_MAJOR_XKB_VERSION, XKB_X11_MIN_MINOR_XKB_VERSION,
                                    XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr, &reader.xkbEventBase_,
                                    nullptr) == 0) {
        return std::nullopt;
    }
    reader.inputOpcode_ = input->major_opcode;
    selectHierarchyChanges(connection);
    selectLayoutChanges(connection);
    return reader;
}

bool X11KeyboardReader::readAvailable(Changes& changes,
                                      const std::function<void(const X11KeyboardEvent&)>& receive) const {
    bool hasRead = false;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
        hasRead = true;
        if (isSentByClient(*event)) {
            continue;
        }
        const auto type = event->response_type;
        if (type == XCB_GE_GENERIC) {
            readInputEvent(*event, changes, receive);
        } else if (type == xkbEventBase_) {
            readXkbEvent(*event, changes, receive);
        } else if (type == XCB_MAPPING_NOTIFY) {
            changes.layout = true;
        } else if (lockers_.isOfLocker(*event)) {
            changes.locker = true;
        }
        // Errors concern devices that were removed before a request reached the server; they are ignored.
    }
    return hasRead;
}

void X11KeyboardReader::readInputEvent(const xcb_generic_event_t& event, Changes& changes,
                                       const std::function<void(const X11KeyboardEvent&)>& receive) const {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    if (generic.extension != inputOpcode_) {
        return;
    }
    switch (generic.event_type) {
        case XCB_INPUT_KEY_PRESS:
        case XCB_INPUT_KEY_RELEASE:
            receive(keyEvent(reinterpret_cast<const xcb_input_key_press_event_t&>(event)));
            break;
        case XCB_INPUT_RAW_KEY_RELEASE: {
            const auto& raw = reinterpret_cast<const xcb_input_raw_key_release_event_t&>(event);
            X11KeyboardEvent release;
            release.kind = X11KeyboardEvent::Kind::rawRelease;
            release.deviceId = raw.deviceid;
            release.keyCode = raw.detail;
            release.time = raw.time;
            receive(release);
            break;
        }
        case XCB_INPUT_HIERARCHY:
            changes.devices = true;
            break;
        default:
            break;
    }
}

void X11KeyboardReader::readXkbEvent(const xcb_generic_event_t& event, Changes& changes,
                                     const std::function<void(const X11KeyboardEvent&)>& receive) const {
    // The XKB event type is in the field that is the detail in core events.
    if (event.pad0 != XCB_XKB_STATE_NOTIFY) {
        changes.layout = true;
        return;
    }
    const auto& state = reinterpret_cast<const xcb_xkb_state_notify_event_t&>(event);
    X11KeyboardEvent change;
    change.kind = X11KeyboardEvent::Kind::modifiersChanged;
    change.deviceId = state.deviceID;
    change.time = state.time;
    change.modifiers.effective = state.mods;
    receive(change);
}

}  // namespace ferrowyn
