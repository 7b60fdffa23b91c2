#include "platform/x11/x11_connection.h"

#include <xcb/randr.h>
#include <xcb/sync.h>

#include <QCoreApplication>
#include <cstddef>
#include <cstring>

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

std::unique_ptr<X11Connection> X11Connection::open(const char* display) {
    int wanted = 0;
    xcb_connection_t* const connection = xcb_connect(display, &wanted);
    if (xcb_connection_has_error(connection) != 0) {
        xcb_disconnect(connection);  // a failed connection must be freed too
        return nullptr;
    }
    int number = 0;
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; number < wanted && screens.rem > 1; ++number) {
        xcb_screen_next(&screens);
    }
    return std::unique_ptr<X11Connection>(new X11Connection(connection, screens.data, number));
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection, const std::vector<std::string_view>& names) {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(names.size());
    for (const auto name : names) {
        cookies.push_back(xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()));
    }
    std::vector<xcb_atom_t> atoms;
    atoms.reserve(names.size());
    for (const auto cookie : cookies) {
        const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
        atoms.push_back(reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
    return atoms;
}

namespace {

constexpr std::uint8_t sendEventFlag = 0x80;

/// The window to which Qt delivers the event.
std::optional<xcb_window_t> windowOf(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_KEY_PRESS:
        case XCB_KEY_RELEASE:
        case XCB_BUTTON_PRESS:
        case XCB_BUTTON_RELEASE:
        case XCB_MOTION_NOTIFY:
        case XCB_ENTER_NOTIFY:
        case XCB_LEAVE_NOTIFY:
            return reinterpret_cast<const xcb_button_press_event_t&>(event).event;
        case XCB_SELECTION_CLEAR:
        case XCB_SELECTION_REQUEST:
            return reinterpret_cast<const xcb_selection_clear_event_t&>(event).owner;
        case XCB_SELECTION_NOTIFY:
            return reinterpret_cast<const xcb_selection_notify_event_t&>(event).requestor;
        default:
            // All other events to windows have the field at this place.
            return reinterpret_cast<const xcb_client_message_event_t&>(event).window;
    }
}

}  // namespace

bool isSentByClient(const xcb_generic_event_t& event) {
    return (event.response_type & sendEventFlag) != 0;
}

std::uint8_t typeOf(const xcb_generic_event_t& event) {
    return static_cast<std::uint8_t>(event.response_type & ~sendEventFlag);
}

X11SentEventFilter::X11SentEventFilter() {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11SentEventFilter::X11SentEventFilter(xcb_window_t unmanaged) : X11SentEventFilter() {
    unmanaged_ = unmanaged;
}

bool X11SentEventFilter::nativeEventFilter(const QByteArray& eventType, void* message, qintptr* /*result*/) {
    return eventType == "xcb_generic_event_t" && drops(*static_cast<const xcb_generic_event_t*>(message));
}

bool X11SentEventFilter::drops(const xcb_generic_event_t& event) const {
    if (!isSentByClient(event)) {
        return false;
    }
    if (unmanaged_) {
        return windowOf(event) == unmanaged_;
    }
    const auto type = typeOf(event);
    return type != XCB_CLIENT_MESSAGE && type != XCB_CONFIGURE_NOTIFY && type != XCB_SELECTION_NOTIFY;
}

namespace {

constexpr std::uint8_t syncMajor = 3;
constexpr std::uint8_t syncMinor = 1;
constexpr std::string_view clockName = "SERVERTIME";

/// A record of the reply has the counter, its 64-bit resolution, the length of its name, and the name.
constexpr std::size_t nameLengthOffset = 12;
constexpr std::size_t nameOffset = 14;
/// Records and replies are padded to a multiple of this.
constexpr std::size_t wireUnit = 4;

std::optional<xcb_sync_counter_t> clockOf(xcb_connection_t* connection) {
    const XcbReply<xcb_sync_list_system_counters_reply_t> counters(
        xcb_sync_list_system_counters_reply(connection, xcb_sync_list_system_counters(connection), nullptr));
    if (!counters) {
        return std::nullopt;
    }
    // xcb's iterator uses the size of its struct, which includes padding, as the size of a record's fixed part. It
    // would read each name two bytes too late, and the last one past the end of the reply.
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

bool isServerOfWaylandSession(xcb_connection_t* connection, xcb_window_t root) {
    constexpr std::string_view name = "XWAYLAND";
    const auto extensionCookie = xcb_query_extension(connection, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbReply<xcb_query_extension_reply_t> extension(
        xcb_query_extension_reply(connection, extensionCookie, nullptr));
    if (extension != nullptr && extension->present != 0) {
        return true;
    }
    // Older versions lack the extension; the names of their outputs begin with the same word.
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
