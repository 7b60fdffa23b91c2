#include "platform/x11/x11_sent_events.h"

#include <QCoreApplication>

namespace ferrowyn {
namespace {

constexpr std::uint8_t sentMark = 0x80;

/// The window that the toolkit takes the event to be for.
std::optional<xcb_window_t> windowOf(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_KEY_PRESS:
        case XCB_KEY_RELEASE:
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE:
        case XCB_MOTION_NOTIFY:
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY:
            return reinterpret_cast<const xcb_button_press_event_t&>(event).event;
        case XCB_SELECTION_CLEAR:
        case XCB_SELECTION_REQUEST:
            return reinterpret_cast<const xcb_selection_clear_event_t&>(event).owner;
        case XCB_SELECTION_NOTIFY:
            return reinterpret_cast<const xcb_selection_notify_event_t&>(event).requestor;
        default:
            // Where all others that windows get have it.
            return reinterpret_cast<const xcb_client_message_event_t&>(event).window;
    }
}

}  // namespace

bool isSentByClient(const xcb_generic_event_t& event) {
    return (event.response_type & sentMark) != 0;
}

std::uint8_t typeOf(const xcb_generic_event_t& event) {
    return static_cast<std::uint8_t>(event.response_type & ~sentMark);
}

X11SentEventFilter::X11SentEventFilter() {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11SentEventFilter::X11SentEventFilter(xcb_window_t unmanaged) : X11SentEventFilter() {
    unmanaged_ = unmanaged;
}

bool X11SentEventFilter::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    return eventType == "xcb_generic_event_t" && drops(*static_cast<const xcb_generic_event_t*>(message));
}

bool X11SentEventFilter::drops(const xcb_generic_event_t& event) const {
    if (!isSentByClient(event)) {
        return false;
    }
    if (unmanaged_) {
        return windowOf(event) == unmanaged_;
    }
    const auto type = typeOf(event);
    return type != XCB_CLIENT_MESSAGE && type != XCB_CONFIGURE_NOTIFY && type != XCB_SELECTION_NOTIFY;
}

}  // namespace ferrowyn
