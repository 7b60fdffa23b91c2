#include "platform/x11/x11_owners.h"

#include <unistd.h>

#include <array>
#include <bit>
#include <unordered_set>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {
namespace {

constexpr std::uint32_t maximumMachineLength = 64;

std::string localHostName() {
    std::array<char, 256> name{};
    return gethostname(name.data(), name.size() - 1) == 0 ? std::string(name.data()) : std::string();
}

}  // namespace

X11Owners::X11Owners(const X11Connection& connection)
    : connection_(connection.get()),
      resourceMask_(xcb_get_setup(connection.get())->resource_id_mask),
      hostName_(localHostName()) {
    const auto* const extension = xcb_get_extension_data(connection_, &xcb_res_id);
    if (extension == nullptr || extension->present == 0) {
        return;
    }
    const XcbReply<xcb_res_query_version_reply_t> version(
        xcb_res_query_version_reply(connection_, xcb_res_query_version(connection_, 1, 2), nullptr));
    canAskServer_ = version != nullptr && (version->server_major > 1 || version->server_minor >= 2);
}

std::optional<xcb_res_query_client_ids_cookie_t> X11Owners::request(const std::vector<xcb_window_t>& windows) const {
    if (!canAskServer_ || windows.empty()) {
        return std::nullopt;
    }
    std::unordered_set<std::uint32_t> seen;
    std::vector<xcb_res_client_id_spec_t> clients;
    for (const auto window : windows) {
        if (seen.insert(clientOf(window)).second) {
            clients.push_back({window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID});
        }
    }
    return xcb_res_query_client_ids(connection_, static_cast<std::uint32_t>(clients.size()), clients.data());
}

X11Owners::Processes X11Owners::collect(std::optional<xcb_res_query_client_ids_cookie_t> cookie) const {
    Processes processes;
    if (!cookie) {
        return processes;
    }
    const XcbReply<xcb_res_query_client_ids_reply_t> reply(
        xcb_res_query_client_ids_reply(connection_, *cookie, nullptr));
    if (reply == nullptr) {
        return processes;
    }
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0;
         xcb_res_client_id_value_next(&ids)) {
        if (xcb_res_client_id_value_value_length(ids.data) < 1) {
            continue;
        }
        // 0 stands for a process in another process namespace.
        const auto process = *xcb_res_client_id_value_value(ids.data);
        if (process > 0 && process < static_cast<std::uint32_t>(firstStandIn)) {
            processes.emplace(clientOf(ids.data->spec.client), static_cast<Pid>(process));
        }
    }
    return processes;
}

Pid X11Owners::standInFor(xcb_window_t window) const {
    return firstStandIn + static_cast<Pid>(clientOf(window) >> std::countr_zero(~resourceMask_));
}

X11Owners::Claim X11Owners::requestClaim(xcb_window_t window, const X11Atoms& atoms) const {
    return {xcb_get_property(connection_, 0, window, atoms.netWmPid, XCB_GET_PROPERTY_TYPE_ANY, 0, 1),
            xcb_get_property(connection_, 0, window, XCB_ATOM_WM_CLIENT_MACHINE, XCB_GET_PROPERTY_TYPE_ANY, 0,
                             maximumMachineLength)};
}

std::optional<Pid> X11Owners::collectClaim(const Claim& claim) const {
    const auto pid = X11Property::collect(connection_, claim.pid).item(XCB_ATOM_CARDINAL);
    const auto machineProperty = X11Property::collect(connection_, claim.machine);
    auto machine = machineProperty.bytes(XCB_ATOM_STRING);
    if (machine) {
        *machine = machine->substr(0, machine->find('\0'));
    }
    const bool isLocal = !machine || *machine == hostName_;
    if (!pid || *pid == 0 || *pid >= static_cast<std::uint32_t>(firstStandIn) || !isLocal) {
        return std::nullopt;
    }
    return static_cast<Pid>(*pid);
}

}  // namespace ferrowyn
