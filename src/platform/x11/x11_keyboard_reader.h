#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/x11/x11_keyboard_event.h"
#include "platform/x11/x11_locker_watch.h"

namespace ferrowyn {

class X11Connection;

/// Reads what the server sends to the tap's connection. Tap thread.
class X11KeyboardReader {
public:
    /// Nothing when the server has no XInput 2.2 or no XKB. Waits for the server.
    [[nodiscard]] static std::optional<X11KeyboardReader> create(const X11Connection& connection);

    /// What happened besides keys since it was last cleared.
    struct Changes {
        bool layout = false;
        bool devices = false;
        /// A screen locker is starting.
        bool locker = false;
    };

    /// Hands over each key event that has arrived, in order, and notes the changes; whether anything had arrived. Waits
    /// for the server only where a window may be a locker's.
    bool readAvailable(Changes& changes, const std::function<void(const X11KeyboardEvent&)>& receive) const;

    [[nodiscard]] const X11LockerWatch& lockers() const { return lockers_; }

private:
    explicit X11KeyboardReader(const X11Connection& connection) : connection_(&connection), lockers_(connection) {}

    void readInputEvent(const xcb_generic_event_t& event, Changes& changes,
                        const std::function<void(const X11KeyboardEvent&)>& receive) const;
    void readXkbEvent(const xcb_generic_event_t& event, Changes& changes,
                      const std::function<void(const X11KeyboardEvent&)>& receive) const;

    const X11Connection* connection_;
    X11LockerWatch lockers_;
    std::uint8_t inputOpcode_ = 0;
    std::uint8_t xkbEventBase_ = 0;
};

}  // namespace ferrowyn
