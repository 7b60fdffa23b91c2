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

/// Finds the process that a window belongs to. The server (X-Resource extension) knows the process of each client's
/// socket, which is right also for sandboxes with their own process numbers. Without that, for example for a client on
/// another machine, the window's `_NET_WM_PID` counts. A client with neither gets a stand-in: a number that no process
/// can have, so that its windows still form one application. Used on the thread of its connection.
class X11Owners {
public:
    /// Asks for the extension's version; a few round trips.
    explicit X11Owners(const X11Connection& connection);

    /// Asks for the clients of these windows in one request; nullopt when the server lacks the extension.
    [[nodiscard]] std::optional<xcb_res_query_client_ids_cookie_t> request(
        const std::vector<xcb_window_t>& windows) const;
    /// The process of each client whose process is known, by client number.
    using Processes = std::unordered_map<std::uint32_t, Pid>;
    [[nodiscard]] Processes collect(std::optional<xcb_res_query_client_ids_cookie_t> cookie) const;

    /// The number of the client that made the window.
    [[nodiscard]] std::uint32_t clientOf(xcb_window_t window) const { return window & ~resourceMask_; }
    /// The stand-in for the process of the window's client.
    [[nodiscard]] Pid standInFor(xcb_window_t window) const;

    /// The requests for `_NET_WM_PID` and WM_CLIENT_MACHINE. The process counts only for a client of this machine.
    struct Claim {
        xcb_get_property_cookie_t pid;
        xcb_get_property_cookie_t machine;
    };
    [[nodiscard]] Claim requestClaim(xcb_window_t window, const X11Atoms& atoms) const;
    [[nodiscard]] std::optional<Pid> collectClaim(const Claim& claim) const;

    /// Well above the largest process number of Linux, 2^22.
    static constexpr Pid firstStandIn = 0x40000000;

private:
    xcb_connection_t* connection_;
    std::uint32_t resourceMask_;
    bool canAskServer_ = false;
    std::string hostName_;
};

}  // namespace ferrowyn
