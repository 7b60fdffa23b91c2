#include "platform/x11/x11_locker_watch.h"

#include <xcb/randr.h>
#include <xcb/screensaver.h>

#include <optional>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

constexpr std::uint8_t responseTypeMask = 0x7F;

/// Pixels that a covering window may leave at each edge: xsecurelock leaves one, so that nothing takes its window for
/// one in full screen.
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
    // Some lockers show their window only once they have the keyboard, so that it is made already tells.
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

}  // namespace ferrowyn
