#pragma once

#include <cstdint>

namespace ferrowyn {

/// A message between the tap and its guard. The socket preserves message boundaries.
struct X11KeyboardGuardMessage {
    enum class Kind : std::uint32_t {
        /// From the guard: asks whether the tap still runs.
        question,
        /// From the tap: it runs.
        answer,
        /// From the tap: while one of these modifiers is down, a key press can freeze the keyboard (synchronous passive
        /// grab). `value` is a mask of real modifiers; 0 when no press can.
        freezingModifiers,
        /// From the tap: it is about to grab the keyboard.
        held,
        /// From the tap: it has released the keyboard.
        free,
    };
    Kind kind = Kind::question;
    std::uint32_t value = 0;
};

/// The guard's end of the socket.
inline constexpr int x11KeyboardGuardSocket = 3;

}  // namespace ferrowyn
