#include "platform/x11/x11_panel_events.h"

#include <xcb/xfixes.h>

#include <utility>

namespace ferrowyn {

X11PanelEvents::X11PanelEvents(std::unique_ptr<X11Connection> connection)
    : events_(
          std::move(connection), [this](const xcb_generic_event_t& event) { received_.send(event); }, [] {}) {
    setHearsStacking(false);
}

std::optional<std::uint8_t> X11PanelEvents::listenToSelection(xcb_atom_t selection) {
    const auto* const extension = xcb_get_extension_data(get(), &xcb_xfixes_id);
    if (extension == nullptr || extension->present == 0) {
        return std::nullopt;
    }
    // The server refuses every other request of the extension before it has been asked for its version.
    const auto version = xcb_xfixes_query_version(get(), XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    xcb_discard_reply(get(), version.sequence);
    xcb_xfixes_select_selection_input(get(), root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    return extension->first_event;
}

void X11PanelEvents::setHearsStacking(bool hearsStacking) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                               (hearsStacking ? std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY} : 0U);
    xcb_change_window_attributes(get(), root(), XCB_CW_EVENT_MASK, &mask);
    events_.flush();
}

}  // namespace ferrowyn
