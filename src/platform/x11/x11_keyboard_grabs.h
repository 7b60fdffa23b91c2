#pragma once

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <vector>

namespace ferrowyn {

class Log;
class X11Connection;

/// The passive grabs of the trigger combinations. They match at the slave keyboards, before any grab of a window
/// manager, which can only be at the master. There are two ways:
///
/// - On all devices at once, synchronous. After the trigger's press the server holds back what that keyboard types
///   until the tap frees it, however late that is. A tap that never does would freeze the keyboard.
/// - On each slave keyboard by its id, asynchronous. What is typed before the tap has taken the keyboard goes to the
///   application. Used where the window manager has such grabs itself, because the server then refuses the first way,
///   and where no guard watches the tap. (Synchronous grabs by id would lose keys.)
///
/// Tap thread.
class X11KeyboardGrabs {
public:
    X11KeyboardGrabs(const X11Connection& connection, Log& log) : connection_(connection), log_(log) {}

    /// Whether the server may hold keys back. Takes effect with the next `install`.
    void setHoldsKeysBack(bool isAllowed) { mayHoldKeysBack_ = isAllowed; }
    /// Whether the next `install` grabs in the first way.
    /// Several people at one screen, each with a keyboard, do without: the guard watches one.
    [[nodiscard]] bool holdsKeysBack() const {
        return mayHoldKeysBack_ && !isRefusedOnAllDevices_ && masterKeyboards_.size() == 1;
    }
    /// Whether the grabs were of the first way when the server had handled the request with this number: an event may
    /// be read after the way has changed. Called with the numbers of events in their order.
    [[nodiscard]] bool heldKeysBackAt(std::uint32_t sequence);
    /// What is to be grabbed. Takes effect with the next `install`.
    void setKeys(std::vector<std::uint32_t> keyCodes, std::vector<std::uint32_t> modifiers);
    /// Reads which keyboards there are. Waits for the server.
    void readDevices();

    /// Grabs what is wanted and not grabbed yet, gives back what is no longer wanted. Waits for the server.
    void install();
    /// Gives everything back; only sent, not waited for.
    void remove();
    /// Another client may have let go of what it had: the next `install` tries the first way again.
    void forgetRefusal() { isRefusedOnAllDevices_ = false; }
    /// Whether changes of the modifiers are told, for every master. They are part of the trigger: a tap that learnt of
    /// them only once it has the keyboard would take two quick toggles for one whenever its thread is late. That costs
    /// a wake-up for each press of a modifier; nothing else is asked for, so no other key of the user wakes the tap or
    /// is seen by it. Only sent.
    void watchModifiers(bool isWatching);
    /// Whether the device is no master keyboard: one that was plugged in a moment ago is not known yet.
    [[nodiscard]] bool isSlave(xcb_input_device_id_t device) const { return !masterKeyboards_.contains(device); }
    /// The keyboard that this slave belongs to.
    [[nodiscard]] xcb_input_device_id_t masterOf(xcb_input_device_id_t slave) const;
    /// Whether the slave is one of the server's test keyboards, which programs type on.
    [[nodiscard]] bool isTestKeyboard(xcb_input_device_id_t slave) const { return testKeyboards_.contains(slave); }
    /// The first master keyboard: the one that the user's keys go through unless several people share the screen.
    [[nodiscard]] xcb_input_device_id_t mainMaster() const { return mainMaster_; }

private:
    struct Target {
        xcb_input_device_id_t device = 0;
        std::uint32_t keyCode = 0;
        friend auto operator<=>(const Target&, const Target&) = default;
    };

    /// The grabs are of this way from a request on.
    struct WayChange {
        std::uint32_t sequence = 0;
        bool holdsKeysBack = false;
    };

    void ungrab(const Target& target, const std::vector<std::uint32_t>& modifiers);
    [[nodiscard]] xcb_input_xi_passive_grab_device_cookie_t requestGrab(
        const Target& target, const std::vector<std::uint32_t>& modifiers) const;
    /// Whether all of it was granted.
    bool readAnswer(const Target& target, xcb_input_xi_passive_grab_device_cookie_t cookie);
    [[nodiscard]] std::set<Target> wantedTargets() const;

    const X11Connection& connection_;
    Log& log_;
    std::vector<std::uint32_t> keyCodes_;
    std::vector<std::uint32_t> modifiers_;
    bool mayHoldKeysBack_ = false;
    /// The server refused the grabs on all devices: another client has such grabs.
    bool isRefusedOnAllDevices_ = false;
    std::set<xcb_input_device_id_t> masterKeyboards_;
    std::set<xcb_input_device_id_t> testKeyboards_;
    /// Master of each slave keyboard.
    std::map<xcb_input_device_id_t, xcb_input_device_id_t> masters_;
    xcb_input_device_id_t mainMaster_ = 3;
    /// In order; the first is that of the events which are still to come.
    std::deque<WayChange> wayChanges_;
    /// With the modifiers it was grabbed with, in order.
    std::map<Target, std::vector<std::uint32_t>> installed_;
};

}  // namespace ferrowyn
