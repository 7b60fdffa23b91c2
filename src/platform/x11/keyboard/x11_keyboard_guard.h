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

/// Starts and talks to the guard, a process that closes a tap's connection to the server when the tap does not answer
/// while it may have grabbed the keyboard. A stopped program (debugger, job control) runs none of its threads, so it
/// cannot release the grab itself. The guard ends with this object, and also when the program is killed. Tap thread.
class X11KeyboardGuard {
public:
    /// Null when the guard cannot be started. `display` has the format of DISPLAY; empty means the environment's
    /// display. Waits for the server.
    [[nodiscard]] static std::unique_ptr<X11KeyboardGuard> start(const X11Connection& connection,
                                                                 const std::string& display, Log& log);
    ~X11KeyboardGuard();
    X11KeyboardGuard(const X11KeyboardGuard&) = delete;
    X11KeyboardGuard& operator=(const X11KeyboardGuard&) = delete;

    /// Readable when the guard asks or has ended; -1 when it is known to have ended.
    [[nodiscard]] int fileDescriptor() const { return socket_; }
    /// False when the guard has ended. Then no grab may freeze the keyboard.
    [[nodiscard]] bool isThere() const { return socket_ >= 0; }

    /// Answers the guard's questions. Like the next two, it never waits.
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
