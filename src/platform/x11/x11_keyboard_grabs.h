#pragma once

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <cstdint>
#include <map>
#include <vector>

namespace ferrowyn {

class Log;
class X11Connection;

/// The passive grabs of the trigger combinations: one for each slave keyboard and key, by the device's id. At the slave
/// they match before any grab of a window manager, which can only be at the master; and each device by itself, because
/// a manager with grabs of this kind of its own makes the server refuse those on all devices at once. Tap thread.
class X11KeyboardGrabs {
public:
    X11KeyboardGrabs(const X11Connection& connection, Log& log) : connection_(connection), log_(log) {}

    /// What is to be grabbed. Takes effect with the next `install`.
    void setKeys(std::vector<std::uint32_t> keyCodes, std::vector<std::uint32_t> modifiers);
    /// Reads which keyboards there are. Waits for the server.
    void readDevices();

    /// Grabs what is wanted and not grabbed yet, gives back what is no longer wanted. Waits for the server.
    void install();
    /// Gives everything back; only sent, not waited for.
    void remove();
    /// Whether changes of the modifiers are told, for every master. They are part of the trigger: a tap that learnt of
    /// them only once it has the keyboard would take two quick toggles for one whenever its thread is late. That costs
    /// a wake-up for each press of a modifier; nothing else is asked for, so no other key of the user wakes the tap or
    /// is seen by it. Only sent.
    void watchModifiers(bool isWatching);
    /// The keyboard that this slave belongs to; nothing when the device is no slave keyboard.
    [[nodiscard]] bool isSlave(xcb_input_device_id_t device) const { return masters_.contains(device); }
    [[nodiscard]] xcb_input_device_id_t masterOf(xcb_input_device_id_t slave) const;
    /// The first master keyboard: the one that the user's keys go through unless several people share the screen.
    [[nodiscard]] xcb_input_device_id_t mainMaster() const { return mainMaster_; }

private:
    struct Target {
        xcb_input_device_id_t device = 0;
        std::uint32_t keyCode = 0;
        friend auto operator<=>(const Target&, const Target&) = default;
    };

    void ungrab(const Target& target, const std::vector<std::uint32_t>& modifiers);
    [[nodiscard]] xcb_input_xi_passive_grab_device_cookie_t requestGrab(
        const Target& target, const std::vector<std::uint32_t>& modifiers) const;
    void readAnswer(const Target& target, xcb_input_xi_passive_grab_device_cookie_t cookie);

    const X11Connection& connection_;
    Log& log_;
    std::vector<std::uint32_t> keyCodes_;
    std::vector<std::uint32_t> modifiers_;
    /// Master of each slave keyboard.
    std::map<xcb_input_device_id_t, xcb_input_device_id_t> masters_;
    xcb_input_device_id_t mainMaster_ = 3;
    /// With the modifiers it was grabbed with, in order.
    std::map<Target, std::vector<std::uint32_t>> installed_;
};

}  // namespace ferrowyn
