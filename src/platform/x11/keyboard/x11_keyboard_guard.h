#pragma once

#include <sys/types.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <string>

#include "platform/x11/keyboard/x11_keyboard_guard_message.h"

namespace ferrowyn {

class Log;
class X11Connection;

/// A small process that ends a tap's connection to the server when the tap stops answering while it may have the user's
/// keyboard: a program that is stopped (by a debugger, by a shell's job control) runs none of its threads, so nothing
/// in it can give the keyboard back. The process dies with this object, and ends by itself when the program is killed.
/// Tap thread.
class X11KeyboardGuard {
public:
    /// Null when it cannot be started. `display` as in DISPLAY; empty for the environment's. Waits for the server.
    [[nodiscard]] static std::unique_ptr<X11KeyboardGuard> start(const X11Connection& connection,
                                                                 const std::string& display, Log& log);
    ~X11KeyboardGuard();
    X11KeyboardGuard(const X11KeyboardGuard&) = delete;
    X11KeyboardGuard& operator=(const X11KeyboardGuard&) = delete;

    /// Readable when it asks something, or is gone; -1 once it is known to be gone.
    [[nodiscard]] int fileDescriptor() const { return socket_; }
    /// False once it is gone: nothing may freeze the keyboard then.
    [[nodiscard]] bool isThere() const { return socket_ >= 0; }

    /// Answers what it has asked. Never waits, as all of these.
    void answer();
    void setFreezingModifiers(std::uint32_t modifiers);
    void noteHeld(bool isHeld);

private:
    X11KeyboardGuard(pid_t process, int socket) : process_(process), socket_(socket) {}
    void send(X11KeyboardGuardMessage::Kind kind, std::uint32_t value = 0);
    void close();

    pid_t process_;
    int socket_;
    std::uint32_t freezingModifiers_ = 0;
};

}  // namespace ferrowyn
