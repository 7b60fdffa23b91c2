#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/x11/keyboard/x11_keyboard_event.h"

namespace ferrowyn {

class X11Connection;

/// Recognises a screen locker that starts while the keyboard is held, by what the server tells of it: the screen saver
/// becomes active, or another client makes or shows a window without a manager that covers the screen or a monitor. A
/// locker that does not get the keyboard within a second or two gives up and leaves the screen open. Tap thread.
class X11LockerWatch {
public:
    /// Waits for the server. The reference outlives this.
    explicit X11LockerWatch(const X11Connection& connection);

    /// Whether windows are looked at. The screen saver always is: it says something a few times a day. Only sent.
    void watchWindows(bool isWatching) const;
    /// Whether this event tells of a locker. May wait for the server.
    [[nodiscard]] bool isOfLocker(const xcb_generic_event_t& event) const;

private:
    /// One of them, or all: some lockers make a window for each.
    [[nodiscard]] bool coversAMonitor(xcb_window_t window) const;

    const X11Connection* connection_;
    bool knowsMonitors_;
    /// Of the screen saver's only event; 0 where the server has no such extension.
    std::uint8_t screenSaverEvent_ = 0;
};

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
