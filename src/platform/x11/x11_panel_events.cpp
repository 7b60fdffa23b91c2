#include "platform/x11/x11_panel_events.h"

#include <utility>

namespace ferrowyn {

X11PanelEvents::X11PanelEvents(std::unique_ptr<X11Connection> connection)
    : events_(
          std::move(connection), [this](const xcb_generic_event_t& event) { received_.send(event); }, [] {}) {
    setHearsStacking(false);
}

void X11PanelEvents::setHearsStacking(bool hearsStacking) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                               (hearsStacking ? std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY} : 0U);
    xcb_change_window_attributes(get(), root(), XCB_CW_EVENT_MASK, &mask);
    events_.flush();
}

}  // namespace ferrowyn
