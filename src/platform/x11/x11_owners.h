#pragma once

#include <xcb/res.h>
#include <xcb/xcb.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/app_window.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_root_properties.h"

namespace ferrowyn {

/// Tells which process a window belongs to. The server knows the process at the other end of each client's socket,
/// which is right also inside sandboxes that count processes on their own; a client that is not on this machine, or a
/// server without that extension, leaves what the client says of itself. For clients with neither, a number stands in
/// that no process can have, so that their windows are still an application of their own.
class X11Owners {
public:
    /// Asks the server what it can; a few round trips, once a connection.
    explicit X11Owners(const X11Connection& connection);

    /// The clients of these windows, asked for in one request. Nothing when the server cannot be asked.
    [[nodiscard]] std::optional<xcb_res_query_client_ids_cookie_t> request(
        const std::vector<xcb_window_t>& windows) const;
    /// The process of each client that has one, by client.
    using Processes = std::unordered_map<std::uint32_t, Pid>;
    [[nodiscard]] Processes collect(std::optional<xcb_res_query_client_ids_cookie_t> cookie) const;

    /// Which client made the window.
    [[nodiscard]] std::uint32_t clientOf(xcb_window_t window) const { return window & ~resourceMask_; }
    /// The number that stands in for the window's client.
    [[nodiscard]] Pid standInFor(xcb_window_t window) const;

    /// What a window says of its process, believed only from a client of this machine.
    struct Claim {
        xcb_get_property_cookie_t pid;
        xcb_get_property_cookie_t machine;
    };
    [[nodiscard]] Claim requestClaim(xcb_window_t window, const X11Atoms& atoms) const;
    [[nodiscard]] std::optional<Pid> collectClaim(const Claim& claim) const;

    /// Linux numbers processes up to 2^22; stand-ins start well above.
    static constexpr Pid firstStandIn = 0x40000000;

private:
    xcb_connection_t* connection_;
    std::uint32_t resourceMask_;
    bool canAskServer_ = false;
    std::string hostName_;
};

}  // namespace ferrowyn
