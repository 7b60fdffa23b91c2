#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

/// The answer to a property request, read only as what it is. Any client may write any bytes under any name, so a value
/// counts only when type and format are the expected ones; everything else reads as absent. The views live as long as
/// this object.
class X11Property {
public:
    X11Property() = default;
    explicit X11Property(XcbReply<xcb_get_property_reply_t> reply) : reply_(std::move(reply)) {}

    /// Waits for the answer; a window that has vanished answers with nothing.
    [[nodiscard]] static X11Property collect(xcb_connection_t* connection, xcb_get_property_cookie_t cookie);

    /// Whether the property exists, whatever it holds.
    [[nodiscard]] bool exists() const { return reply_ != nullptr && reply_->type != XCB_ATOM_NONE; }
    [[nodiscard]] xcb_atom_t type() const { return reply_ == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply_->type; }
    /// The property holds more than was asked for.
    [[nodiscard]] bool isCut() const { return reply_ != nullptr && reply_->bytes_after > 0; }

    /// The value as 32-bit items of this type; empty when it is anything else.
    [[nodiscard]] std::span<const std::uint32_t> items(xcb_atom_t type) const;
    /// The first 32-bit item of this type.
    [[nodiscard]] std::optional<std::uint32_t> item(xcb_atom_t type) const;
    /// The value as bytes of this type; nothing when it is anything else.
    [[nodiscard]] std::optional<std::string_view> bytes(xcb_atom_t type) const;

private:
    XcbReply<xcb_get_property_reply_t> reply_;
};

}  // namespace ferrowyn
