#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>

#include "platform/x11/keyboard/x11_keyboard_event.h"

namespace ferrowyn {

class X11Connection;

/// Recognises a screen locker that starts while the tap has grabbed the keyboard: the server's screen saver becomes
/// active, or another client creates or maps an override-redirect window that covers the screen or a monitor. A locker
/// that cannot grab the keyboard within a second or two gives up and leaves the screen unlocked. Tap thread.
class X11LockerWatch {
public:
    /// Waits for the server. The reference outlives this.
    explicit X11LockerWatch(const X11Connection& connection);

    /// Whether events about windows are selected. Those of the screen saver are rare and always selected. Does not
    /// wait.
    void watchWindows(bool isWatching) const;
    /// Whether this event shows that a locker starts. May wait for the server.
    [[nodiscard]] bool isOfLocker(const xcb_generic_event_t& event) const;

private:
    /// Whether the window covers the screen or one monitor: some lockers make a window for each monitor.
    [[nodiscard]] bool coversAMonitor(xcb_window_t window) const;

    const X11Connection* connection_;
    bool knowsMonitors_;
    /// The number of the screen saver extension's event; 0 without the extension.
    std::uint8_t screenSaverEvent_ = 0;
};

/// Reads the events of the tap's connection. Tap thread.
class X11KeyboardReader {
public:
    /// nullopt when the server lacks XInput 2.2 or XKB. Waits for the server.
    [[nodiscard]] static std::optional<X11KeyboardReader> create(const X11Connection& connection);

    /// The changes other than keys since they were last cleared.
    struct Changes {
        bool layout = false;
        bool devices = false;
        /// A screen locker is starting.
        bool locker = false;
    };

    /// Passes each key event that has arrived to `receive`, in order, and notes the changes. True when anything had
    /// arrived. Waits for the server only when a window may be a locker's.
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
