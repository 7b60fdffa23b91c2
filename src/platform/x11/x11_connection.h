#pragma once

#include <xcb/xcb.h>

#include <memory>
#include <string_view>
#include <vector>

namespace ferrowyn {

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

}  // namespace ferrowyn
