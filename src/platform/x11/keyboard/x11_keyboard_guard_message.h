#pragma once

#include <cstdint>

namespace ferrowyn {

/// What the tap and its guard tell each other, one at a time, over a socket that keeps messages apart.
struct X11KeyboardGuardMessage {
    enum class Kind : std::uint32_t {
        /// From the guard: does the tap still run? From the tap: it does.
        question,
        answer,
        /// From the tap: while one of these modifiers is down, a press can make the server hold keys back. `value` is
        /// a mask of real modifiers; 0 when no press can.
        freezingModifiers,
        /// From the tap: it is about to take the keyboard.
        held,
        /// From the tap: it has given the keyboard back.
        free,
    };
    Kind kind = Kind::question;
    std::uint32_t value = 0;
};

/// The guard's end of the socket.
inline constexpr int x11KeyboardGuardSocket = 3;

}  // namespace ferrowyn
