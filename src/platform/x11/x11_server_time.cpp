#include "platform/x11/x11_server_time.h"

#include <xcb/sync.h>

#include <string_view>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

constexpr std::uint8_t syncMajor = 3;
constexpr std::uint8_t syncMinor = 1;
constexpr std::string_view clockName = "SERVERTIME";

std::optional<xcb_sync_counter_t> clockOf(xcb_connection_t* connection) {
    const XcbReply<xcb_sync_list_system_counters_reply_t> counters(
        xcb_sync_list_system_counters_reply(connection, xcb_sync_list_system_counters(connection), nullptr));
    if (!counters) {
        return std::nullopt;
    }
    for (auto each = xcb_sync_list_system_counters_counters_iterator(counters.get()); each.rem > 0;
         xcb_sync_systemcounter_next(&each)) {
        const std::string_view name(xcb_sync_systemcounter_name(each.data),
                                    static_cast<std::size_t>(xcb_sync_systemcounter_name_length(each.data)));
        if (name == clockName) {
            return each.data->counter;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<xcb_timestamp_t> serverTimeNow(xcb_connection_t* connection) {
    const auto* const extension = xcb_get_extension_data(connection, &xcb_sync_id);
    if (extension == nullptr || extension->present == 0) {
        return std::nullopt;
    }
    xcb_discard_reply(connection, xcb_sync_initialize(connection, syncMajor, syncMinor).sequence);
    const auto clock = clockOf(connection);
    if (!clock) {
        return std::nullopt;
    }
    const XcbReply<xcb_sync_query_counter_reply_t> value(
        xcb_sync_query_counter_reply(connection, xcb_sync_query_counter(connection, *clock), nullptr));
    return value ? std::optional<xcb_timestamp_t>(value->counter_value.lo) : std::nullopt;
}

}  // namespace ferrowyn
