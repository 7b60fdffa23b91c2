#include "app/session_check.h"

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <string_view>
#include <vector>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

std::string fromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

/// Servers before version 23.1 have no extension that tells, but name their outputs.
bool hasXWaylandOutput(xcb_connection_t* connection, xcb_window_t root) {
    const auto resourcesCookie = xcb_randr_get_screen_resources_current(connection, root);
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(connection, resourcesCookie, nullptr));
    if (!resources || resources->num_outputs == 0) {
        return false;
    }
    const auto output = xcb_randr_get_screen_resources_current_outputs(resources.get())[0];
    const auto infoCookie = xcb_randr_get_output_info(connection, output, resources->config_timestamp);
    const XcbReply<xcb_randr_get_output_info_reply_t> info(
        xcb_randr_get_output_info_reply(connection, infoCookie, nullptr));
    if (!info) {
        return false;
    }
    const auto* name = reinterpret_cast<const char*>(xcb_randr_get_output_info_name(info.get()));
    return std::string_view(name, info->name_len).starts_with("XWAYLAND");
}

}  // namespace

SessionEnvironment SessionEnvironment::current() {
    return {fromEnvironment("DISPLAY"), fromEnvironment("WAYLAND_DISPLAY"), fromEnvironment("XDG_SESSION_TYPE")};
}

std::optional<std::string> sessionRefusal(const SessionEnvironment& environment) {
    if (!environment.waylandDisplay.empty() || environment.sessionType == "wayland") {
        return waylandMessage();
    }
    if (environment.display.empty()) {
        return "ferrowyn: there is no display: DISPLAY is not set.\n"
               "Start Ferrowyn from within an X11 desktop session, or set DISPLAY to the X server to work on\n"
               "(for example DISPLAY=:0).";
    }
    return std::nullopt;
}

std::string unreachableDisplayMessage(const SessionEnvironment& environment) {
    return "ferrowyn: cannot connect to the X server \"" + environment.display +
           "\" that DISPLAY names.\n"
           "Check that it is running and that you may use it (XAUTHORITY), or start Ferrowyn from within an X11\n"
           "desktop session.";
}

std::string waylandMessage() {
    return "ferrowyn: this is a Wayland session, and only X11 sessions are supported so far.\n"
           "A Wayland compositor gives keys to the window in front only, and lists windows to nobody, so Alt+Tab\n"
           "cannot be captured and other windows cannot be switched to; XWayland does not change that.\n"
           "Log out and choose an \"Xorg\" (X11) session at the login screen.";
}

bool isXWayland(const X11Connection& connection) {
    constexpr std::string_view extension = "XWAYLAND";
    const auto cookie =
        xcb_query_extension(connection.get(), static_cast<std::uint16_t>(extension.size()), extension.data());
    const XcbReply<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection.get(), cookie, nullptr));
    if (reply && reply->present != 0) {
        return true;
    }
    const auto* randr = xcb_get_extension_data(connection.get(), &xcb_randr_id);
    return randr != nullptr && randr->present != 0 && hasXWaylandOutput(connection.get(), connection.root());
}

}  // namespace ferrowyn
