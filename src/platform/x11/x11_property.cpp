#include "platform/x11/x11_property.h"

#include <cstddef>

namespace ferrowyn {

X11Property X11Property::collect(xcb_connection_t* connection, xcb_get_property_cookie_t cookie) {
    return X11Property(XcbReply<xcb_get_property_reply_t>(xcb_get_property_reply(connection, cookie, nullptr)));
}

std::span<const std::uint32_t> X11Property::items(xcb_atom_t type) const {
    if (reply_ == nullptr || reply_->type != type || reply_->format != 32) {
        return {};
    }
    const auto byteCount = static_cast<std::size_t>(xcb_get_property_value_length(reply_.get()));
    return {static_cast<const std::uint32_t*>(xcb_get_property_value(reply_.get())), byteCount / sizeof(std::uint32_t)};
}

std::optional<std::uint32_t> X11Property::item(xcb_atom_t type) const {
    const auto all = items(type);
    return all.empty() ? std::nullopt : std::optional(all.front());
}

std::optional<std::string_view> X11Property::bytes(xcb_atom_t type) const {
    if (reply_ == nullptr || type == XCB_ATOM_NONE || reply_->type != type || reply_->format != 8) {
        return std::nullopt;
    }
    return std::string_view(static_cast<const char*>(xcb_get_property_value(reply_.get())),
                            static_cast<std::size_t>(xcb_get_property_value_length(reply_.get())));
}

}  // namespace ferrowyn
