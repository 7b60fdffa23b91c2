#include "platform/x11/x11_wayland_session.h"

#include <xcb/randr.h>

#include <cstddef>
#include <string_view>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

bool isServerOfWaylandSession(xcb_connection_t* connection, xcb_window_t root) {
    constexpr std::string_view name = "XWAYLAND";
    const auto extensionCookie = xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbReply<xcb_query_extension_reply_t> extension(
        xcb_query_extension_reply(connection, extensionCookie, nullptr));
    if (extension != nullptr && extension->present != 0) {
        return true;
    }
    // Older ones do not have the extension, but name their outputs.
    const auto* const randr = xcb_get_extension_data(connection, &xcb_randr_id);
    if (randr == nullptr || randr->present == 0) {
        return false;
    }
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(
            connection, xcb_randr_get_screen_resources_current(connection, root), nullptr));
    if (resources == nullptr || xcb_randr_get_screen_resources_current_outputs_length(resources.get()) == 0) {
        return false;
    }
    const auto output = *xcb_randr_get_screen_resources_current_outputs(resources.get());
    const XcbReply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
        connection, xcb_randr_get_output_info(connection, output, resources->config_timestamp), nullptr));
    return info != nullptr &&
           std::string_view(reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get())),
                            static_cast<std::size_t>(xcb_randr_get_output_info_name_length(info.get())))
               .starts_with(name);
}

}  // namespace ferrowyn
