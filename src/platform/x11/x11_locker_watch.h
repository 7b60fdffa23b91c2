#pragma once

#include <xcb/xcb.h>

#include <cstdint>

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

}  // namespace ferrowyn
