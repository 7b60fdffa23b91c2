#pragma once

#include <xcb/xcb.h>

#include <optional>

namespace ferrowyn {

/// The server's clock, as events are stamped with it; nothing when the server does not tell. A few round trips.
[[nodiscard]] std::optional<xcb_timestamp_t> serverTimeNow(xcb_connection_t* connection);

}  // namespace ferrowyn
