#pragma once

#include <cstdint>

namespace ferrowyn {

/// What the tap remembers of one event of the keyboard: small enough to queue.
struct X11KeyboardEvent {
    enum class Kind {
        press,
        release,
        modifiersChanged,
        /// A key went up at the hardware, whether or not its master knew that it was down. Only the code and the time.
        rawRelease,
    };

    /// Real modifiers and groups at the time of the event, before it had any effect.
    struct Modifiers {
        std::uint32_t base = 0;
        std::uint32_t latched = 0;
        std::uint32_t locked = 0;
        std::uint32_t effective = 0;
        std::uint32_t baseGroup = 0;
        std::uint32_t latchedGroup = 0;
        std::uint32_t lockedGroup = 0;
    };

    Kind kind = Kind::press;
    bool isRepeat = false;
    /// Typed while the server held its keyboard back for the tap, after the press that began that: only its own
    /// modifiers tell whether it is a trigger.
    bool wasHeldBack = false;
    /// The device whose grab delivered the event: a slave as long as its own grab holds it, else the master.
    std::uint16_t deviceId = 0;
    std::uint32_t keyCode = 0;
    std::uint32_t time = 0;
    /// The latest request of the tap that the server had handled by then. Press and release only.
    std::uint32_t sequence = 0;
    std::uint32_t rootX = 0;
    std::uint32_t rootY = 0;
    /// For `modifiersChanged`, after the change.
    Modifiers modifiers;
};

}  // namespace ferrowyn
