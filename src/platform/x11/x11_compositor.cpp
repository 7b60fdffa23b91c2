#include "platform/x11/x11_compositor.h"

#include <xcb/xfixes.h>

#include <string>
#include <utility>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

X11Compositor::X11Compositor(X11PanelEvents& events) {
    xcb_connection_t* const connection = events.get();
    const std::string selection = "_NET_WM_CM_S" + std::to_string(events.connection().screenNumber());
    selection_ = events.connection().internAtoms({selection}).front();
    if (const auto firstEvent = events.listenToSelection(selection_)) {
        firstEvent_ = *firstEvent;
        eventSubscription_ = events.observe([this](const xcb_generic_event_t& event) { handle(event); });
    }
    // Asked after the events are on, so that no start or stop falls between the two.
    const XcbReply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection_), nullptr));
    owner_ = owner ? owner->owner : xcb_window_t{XCB_WINDOW_NONE};
}

Subscription X11Compositor::observe(std::function<void(bool)> handler) const {
    return changes_.subscribe([handler = std::move(handler)](const bool& isRunning) { handler(isRunning); });
}

void X11Compositor::handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7FU) != firstEvent_ + XCB_XFIXES_SELECTION_NOTIFY) {
        return;
    }
    const auto& notification = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    if (notification.selection != selection_) {
        return;
    }
    const bool wasRunning = isRunning();
    // The owner is named also when its window or its client is what has just gone.
    owner_ = notification.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER ? notification.owner
                                                                                    : xcb_window_t{XCB_WINDOW_NONE};
    if (isRunning() != wasRunning) {
        changes_.send(isRunning());
    }
}

}  // namespace ferrowyn
