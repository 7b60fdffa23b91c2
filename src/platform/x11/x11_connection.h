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

/// The atoms of these names, in their order, all asked for before the first answer is read: one round trip.
[[nodiscard]] std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection,
                                                  const std::vector<std::string_view>& names);

/// One connection to the X server, closed when this is destroyed. Each thread that talks to the server has its own, so
/// that none waits for another's replies.
class X11Connection {
public:
    /// Null when there is no server to connect to. `display` as in DISPLAY; null for the environment's.
    [[nodiscard]] static std::unique_ptr<X11Connection> open(const char* display = nullptr);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    [[nodiscard]] xcb_connection_t* get() const { return connection_; }
    [[nodiscard]] xcb_screen_t* screen() const { return screen_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    /// The screen's place among the server's, from 0: the selections of one screen end with it.
    [[nodiscard]] int screenNumber() const { return screenNumber_; }
    [[nodiscard]] int fileDescriptor() const { return xcb_get_file_descriptor(connection_); }
    /// False once the connection is lost; it never comes back.
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

/// Any client can send any event to any window. Such an event is marked, and is not to be believed where only the
/// server knows what is so. Messages are meant to be sent.
[[nodiscard]] bool isSentByClient(const xcb_generic_event_t& event);
/// Its number, without the mark.
[[nodiscard]] std::uint8_t typeOf(const xcb_generic_event_t& event);

/// Keeps events that other clients have sent from the toolkit, which believes them all. Main thread; with a
/// QCoreApplication.
class X11SentEventFilter final : public QAbstractNativeEventFilter {
public:
    /// What nobody but the server can know (keys, clicks, what is on the screen), sent to any window. The conventions
    /// let a manager send where it has put a window, and a client that the selection is there.
    X11SentEventFilter();
    /// Everything sent to this window, messages too: one that no manager manages, and that nobody has anything to
    /// tell.
    explicit X11SentEventFilter(xcb_window_t unmanaged);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    [[nodiscard]] bool drops(const xcb_generic_event_t& event) const;

    std::optional<xcb_window_t> unmanaged_;
};

/// The server's clock, as events are stamped with it; nothing when the server does not tell. A few round trips.
[[nodiscard]] std::optional<xcb_timestamp_t> serverTimeNow(xcb_connection_t* connection);

/// Whether this X server is one that a Wayland compositor runs for old programs. Such a server is told the keys of its
/// own clients only. A few round trips.
[[nodiscard]] bool isServerOfWaylandSession(xcb_connection_t* connection, xcb_window_t root);

}  // namespace ferrowyn
