#include "platform/x11/x11_locker_watch.h"

#include <xcb/screensaver.h>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

constexpr std::uint8_t responseTypeMask = 0x7F;

/// Pixels that a covering window may leave at each edge: xsecurelock leaves one, so that nothing takes its window for
/// one in full screen.
constexpr int margin = 8;

}  // namespace

X11LockerWatch::X11LockerWatch(const X11Connection& connection) : connection_(&connection) {
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
        return created.override_redirect != 0 && coversTheScreen(created.window);
    }
    if (type == XCB_MAP_NOTIFY) {
        const auto& mapped = reinterpret_cast<const xcb_map_notify_event_t&>(event);
        return mapped.override_redirect != 0 && coversTheScreen(mapped.window);
    }
    return false;
}

bool X11LockerWatch::coversTheScreen(xcb_window_t window) const {
    auto* const connection = connection_->get();
    const auto screenRequest = xcb_get_geometry(connection, connection_->root());
    const auto windowRequest = xcb_get_geometry(connection, window);
    const XcbReply<xcb_get_geometry_reply_t> screen(xcb_get_geometry_reply(connection, screenRequest, nullptr));
    const XcbReply<xcb_get_geometry_reply_t> place(xcb_get_geometry_reply(connection, windowRequest, nullptr));
    return screen != nullptr && place != nullptr && place->x <= margin && place->y <= margin &&
           place->x + place->width >= screen->width - margin && place->y + place->height >= screen->height - margin;
}

}  // namespace ferrowyn
