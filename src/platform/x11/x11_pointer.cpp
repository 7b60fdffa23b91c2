#include "platform/x11/x11_pointer.h"

#include <xcb/xinput.h>

#include <algorithm>
#include <utility>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {
namespace {

/// Buttons 4 to 7 are the vertical and the horizontal wheel.
bool isWheel(std::uint32_t button) {
    return button >= 4 && button <= 7;
}

}  // namespace

X11Pointer::X11Pointer(X11EventConnection& events, const X11Screens& screens, X11InputContext& context)
    : events_(events), screens_(screens), context_(context) {
    const auto* const extension = xcb_get_extension_data(events_.get(), &xcb_input_id);
    if (extension != nullptr && extension->present != 0) {
        inputExtension_ = extension->major_opcode;
        // Only clients of version 2.1 or later get raw presses during another client's grab.
        const auto version = xcb_input_xi_query_version(events_.get(), 2, 2);
        xcb_discard_reply(events_.get(), version.sequence);
        selectPresses();
        eventSubscription_ = events_.observe([this](const xcb_generic_event_t& event) { handle(event); });
    }
    refresh();
}

Point X11Pointer::location() const {
    const auto [x, y] = context_.pointer();
    return screens_.coordinates().toPoints(static_cast<int>(x), static_cast<int>(y));
}

void X11Pointer::refresh() {
    static_cast<void>(ask());
}

std::optional<std::pair<int, int>> X11Pointer::ask() {
    const XcbReply<xcb_query_pointer_reply_t> pointer(
        xcb_query_pointer_reply(events_.get(), xcb_query_pointer(events_.get(), events_.root()), nullptr));
    if (!pointer) {
        return std::nullopt;
    }
    moved(pointer->root_x, pointer->root_y);
    return std::pair<int, int>(pointer->root_x, pointer->root_y);
}

Subscription X11Pointer::observeClicksElsewhere(std::function<void()> handler) {
    return clicks_.subscribe([handler = std::move(handler)](const bool&) { handler(); });
}

void X11Pointer::panelCovers(const std::optional<X11PixelRect>& panel) {
    panel_ = panel;
    if (panel) {
        context_.setPanel(*panel);
    }
}

void X11Pointer::moved(int x, int y) {
    context_.setPointer(static_cast<std::uint32_t>(std::max(x, 0)), static_cast<std::uint32_t>(std::max(y, 0)));
}

/// Selects raw presses all the time, although only those during a session matter. The panel is mapped on Qt's
/// connection: a selection made for a session might reach the server after the map request, and a quick press would be
/// missed (seen under load). Waiting for it would be a round trip between the key and the panel. The cost is a short
/// wake-up for each press.
void X11Pointer::selectPresses() {
    const struct {
        xcb_input_event_mask_t header;
        std::uint32_t bits;
    } mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1}, XCB_INPUT_XI_EVENT_MASK_RAW_BUTTON_PRESS};
    xcb_input_xi_select_events(events_.get(), events_.root(), 1, &mask.header);
    events_.flush();
}

void X11Pointer::handle(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7FU) != XCB_GE_GENERIC) {
        return;
    }
    const auto& press = reinterpret_cast<const xcb_input_raw_button_press_event_t&>(event);
    if (press.extension != inputExtension_ || press.event_type != XCB_INPUT_RAW_BUTTON_PRESS) {
        return;
    }
    context_.noteUserTime(press.time);
    if (isWheel(press.detail)) {
        return;
    }
    context_.lastClickTime = press.time;
    if (!panel_) {
        return;
    }
    // A raw event has no position. A round trip is acceptable here.
    const auto place = ask();
    if (place && !panel_->contains(place->first, place->second)) {
        clicks_.send(true);
    }
}

}  // namespace ferrowyn
