#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <set>

#include "platform/x11/x11_keyboard_event.h"
#include "platform/x11/x11_keyboard_seizure.h"

namespace ferrowyn {

/// The keys that are down while the keyboard is held, modifiers aside. The press of the trigger's key never reached the
/// master, so the server does not repeat it there: that is done here, until the hardware says that it went up. Tap
/// thread.
class X11HeldKeys {
public:
    using Clock = std::chrono::steady_clock;

    /// An event of a key that is no modifier. `isAtSlave`: a slave's own grab delivered it.
    void note(const X11KeyboardEvent& event, bool isAtSlave);
    /// The trigger's key is down, and repeats as the server's other keys do.
    void holdTrigger(const X11KeyboardEvent& press, const X11KeyboardSeizure::State& state);

    /// When the trigger's key repeats next; nothing while it is not held.
    [[nodiscard]] std::optional<Clock::time_point> nextRepeat() const;
    /// The repeat, when it is due.
    [[nodiscard]] std::optional<X11KeyboardEvent> takeRepeat();
    /// Lets every key go, so that none repeats for whoever has the keyboard next.
    void releaseAll(X11KeyboardSeizure& seizure);

private:
    struct Trigger {
        X11KeyboardEvent press;
        Clock::time_point repeatAt;
        std::chrono::milliseconds interval{0};
    };

    /// Whose press came through the master and whose release did not yet.
    std::set<std::uint32_t> keyCodes_;
    std::optional<Trigger> trigger_;
};

}  // namespace ferrowyn
