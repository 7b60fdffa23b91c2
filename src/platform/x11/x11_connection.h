#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

/// The reply to a property request, with checked access. Any client may write any bytes to a property, so a value with
/// another type or format than the expected one reads as absent. The returned views live as long as this object.
class X11Property {
public:
    X11Property() = default;
    explicit X11Property(XcbReply<xcb_get_property_reply_t> reply) : reply_(std::move(reply)) {}

    /// Waits for the reply. The property of a destroyed window reads as absent.
    [[nodiscard]] static X11Property collect(xcb_connection_t* connection, xcb_get_property_cookie_t cookie);

    /// Whether the property exists, with any type.
    [[nodiscard]] bool exists() const { return reply_ != nullptr && reply_->type != XCB_ATOM_NONE; }
    [[nodiscard]] xcb_atom_t type() const { return reply_ == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply_->type; }
    /// The property is longer than the requested length.
    [[nodiscard]] bool isCut() const { return reply_ != nullptr && reply_->bytes_after > 0; }

    /// The value as 32-bit items; empty when type or format differ.
    [[nodiscard]] std::span<const std::uint32_t> items(xcb_atom_t type) const;
    /// The first 32-bit item; nullopt when there is none, or type or format differ.
    [[nodiscard]] std::optional<std::uint32_t> item(xcb_atom_t type) const;
    /// The value as bytes; nullopt when type or format differ.
    [[nodiscard]] std::optional<std::string_view> bytes(xcb_atom_t type) const;

private:
    XcbReply<xcb_get_property_reply_t> reply_;
};

/// The atoms with these names, in the same order, in one round trip.
[[nodiscard]] std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection,
                                                  const std::vector<std::string_view>& names);

/// One connection to the X server, closed when this is destroyed. Each thread has a separate one, so that none waits
/// for replies to another.
class X11Connection {
public:
    /// Null when connecting fails. `display` has the format of DISPLAY; null means the environment's display.
    [[nodiscard]] static std::unique_ptr<X11Connection> open(const char* display = nullptr);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return connection_; }
    [[nodiscard]] xcb_screen_t* screen() const { return screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    /// The screen's number, from 0. It is the end of the names of selections that belong to one screen.
    [[nodiscard]] int screenNumber() const { return screenNumber_; }
    [[nodiscard]] int fileDescriptor() const { return xcb_get_file_descriptor(connection_); }
    /// False after the connection was lost; it cannot be restored.
    [[nodiscard]] bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }

    [[nodiscard]] std::vector<xcb_atom_t> internAtoms(const std::vector<std::string_view>& names) const {
        return ferrowyn::internAtoms(connection_, names);
    }

private:
    X11Connection(xcb_connection_t* connection, xcb_screen_t* screen, int screenNumber)
        : connection_(connection), screen_(screen), screenNumber_(screenNumber) {}

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    int screenNumber_;
};

/// Whether a client sent the event with SendEvent, which any client can do to any window. Only client messages are
/// meant to be sent that way; other such events must not be trusted.
[[nodiscard]] bool isSentByClient(const xcb_generic_event_t& event);
/// The event's number, without the flag for SendEvent.
[[nodiscard]] std::uint8_t typeOf(const xcb_generic_event_t& event);

/// Drops events that other clients have sent before Qt gets them, because Qt trusts them. Needs a QCoreApplication.
/// Main thread.
class X11SentEventFilter final : public QAbstractNativeEventFilter {
public:
    /// Filters events to all windows. Lets through client messages, ConfigureNotify and SelectionNotify, which
    /// clients send by convention.
    X11SentEventFilter();
    /// Filters events to this override-redirect window, to which no client has a reason to send anything. Lets nothing
    /// through, client messages included.
    explicit X11SentEventFilter(xcb_window_t unmanaged);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    [[nodiscard]] bool drops(const xcb_generic_event_t& event) const;

    std::optional<xcb_window_t> unmanaged_;
};

/// The server's present time, in the units of event timestamps; nullopt when the server does not offer it. A few round
/// trips.
[[nodiscard]] std::optional<xcb_timestamp_t> serverTimeNow(xcb_connection_t* connection);

/// Whether the X server is Xwayland. Such a server gets only keys that are typed into its own clients. A few round
/// trips.
[[nodiscard]] bool isServerOfWaylandSession(xcb_connection_t* connection, xcb_window_t root);

}  // namespace ferrowyn
