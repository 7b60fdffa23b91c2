#include "platform/x11/x11_server_time.h"

#include <xcb/sync.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

constexpr std::uint8_t syncMajor = 3;
constexpr std::uint8_t syncMinor = 1;
constexpr std::string_view clockName = "SERVERTIME";

/// A record of the reply: the counter, its resolution of 64 bits, the length of its name, the name.
constexpr std::size_t nameLengthOffset = 12;
constexpr std::size_t nameOffset = 14;
/// Records and replies are padded to whole ones of this.
constexpr std::size_t wireUnit = 4;

std::optional<xcb_sync_counter_t> clockOf(xcb_connection_t* connection) {
    const XcbReply<xcb_sync_list_system_counters_reply_t> counters(
        xcb_sync_list_system_counters_reply(connection, xcb_sync_list_system_counters(connection), nullptr));
    if (!counters) {
        return std::nullopt;
    }
    // The library's own iterator takes a record's fixed part for as long as its struct, which the compiler has padded:
    // it reads every name two bytes too late, the last one past the reply's end.
    const auto* const reply = reinterpret_cast<const char*>(counters.get());
    const std::size_t end = sizeof *counters + std::size_t{counters->length} * wireUnit;
    std::size_t at = sizeof *counters;
    for (std::uint32_t left = counters->counters_len; left > 0 && at + nameOffset <= end; --left) {
        xcb_sync_counter_t counter = XCB_NONE;
        std::memcpy(&counter, reply + at, sizeof counter);
        std::uint16_t length = 0;
        std::memcpy(&length, reply + at + nameLengthOffset, sizeof length);
        if (at + nameOffset + length <= end && std::string_view(reply + at + nameOffset, length) == clockName) {
            return counter;
        }
        at += (nameOffset + length + wireUnit - 1) / wireUnit * wireUnit;
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
