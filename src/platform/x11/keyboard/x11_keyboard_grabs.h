#pragma once

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <bitset>
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
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
/// - On each slave keyboard by its id, asynchronous. What is typed before the tap has grabbed the keyboard goes to the
///   application. Used where the window manager has such grabs itself, because the server then refuses the first way,
///   and where no guard watches the tap. (Synchronous grabs by id would lose keys.)
///
/// Tap thread.
class X11PassiveGrabs {
public:
    X11PassiveGrabs(const X11Connection& connection, Log& log) : connection_(connection), log_(log) {}

    /// Whether the server may hold keys back. Takes effect with the next `install`.
    void setHoldsKeysBack(bool isAllowed) { mayHoldKeysBack_ = isAllowed; }
    /// Whether the next `install` grabs in the first way.
    /// Not with several master keyboards, because the guard watches only one.
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

    /// Grabs what is wanted and not grabbed yet, ungrabs what is no longer wanted. Waits for the server.
    void install();
    /// Gives everything back; only sent, not waited for.
    void remove();
    /// Another client may have let go of what it had: the next `install` tries the first way again.
    void forgetRefusal() { isRefusedOnAllDevices_ = false; }
    /// Selects the changes of the modifiers of all masters, or no longer, so that two quick switches are not taken for
    /// one when the tap's thread is late. This costs a wake-up for each press of a modifier. No other key of the user
    /// wakes the tap, and it sees none. Does not wait for the server.
    void watchModifiers(bool isWatching);
    /// Whether the device is no master keyboard: one that was plugged in a moment ago is not known yet.
    [[nodiscard]] bool isSlave(xcb_input_device_id_t device) const { return !masterKeyboards_.contains(device); }
    /// The keyboard that this slave belongs to.
    [[nodiscard]] xcb_input_device_id_t masterOf(xcb_input_device_id_t slave) const;
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
    /// Master of each slave keyboard.
    std::map<xcb_input_device_id_t, xcb_input_device_id_t> masters_;
    xcb_input_device_id_t mainMaster_ = 3;
    /// In order; the first applies to the next event to be read.
    std::deque<WayChange> wayChanges_;
    /// With the modifiers it was grabbed with, in order.
    std::map<Target, std::vector<std::uint32_t>> installed_;
};

/// The active grab of a master keyboard, held from the trigger to the end of a session. Tap thread.
///
/// An active passive grab detaches (floats) the slave: its master gets no events of the slave's keys meanwhile, and
/// would keep a modifier pressed. So `grab` takes the master and frees the slave together, and releases that came with
/// the slave's id are repeated for the master. Keys that the server held back come with the slave's id, in their order,
/// when the slave is freed.
class X11ActiveGrab {
public:
    /// Waits for the server.
    X11ActiveGrab(const X11Connection& connection, X11PassiveGrabs& grabs);

    /// By key code.
    using KeysDown = std::bitset<256>;

    /// What the server said when the keyboard was grabbed.
    struct State {
        /// The real modifiers that are down or locked by now.
        std::uint32_t modifiers = 0;
        KeysDown keysDown;
        std::uint32_t pointerX = 0;
        std::uint32_t pointerY = 0;
        /// How long a key is held before it repeats, and between repeats; 0 when keys do not repeat.
        std::chrono::milliseconds repeatDelay{0};
        std::chrono::milliseconds repeatInterval{0};
        /// As the window manager says; none while no window is.
        xcb_window_t activeWindow = XCB_WINDOW_NONE;
    };

    [[nodiscard]] bool isHeld() const { return master_.has_value(); }

    /// Grabs the master of this slave, frees the slave and those that were noted as grabbed, removes the passive
    /// grabs (they would float the slave again at each further trigger), and repeats the releases that the master
    /// missed. One round trip. Nothing when another client holds the keyboard; the passive grabs are gone then all the
    /// same.
    [[nodiscard]] std::optional<State> grab(std::optional<xcb_input_device_id_t> slave);
    /// The caller puts the passive grabs back first, so that no press falls between. Only sent.
    void ungrab();
    /// Frees a slave that its passive grab still holds. Returns whether the server held back what it typed, which comes
    /// before this connection's next answer. Only sent.
    bool freeSlave(xcb_input_device_id_t slave);
    /// A press came from this slave, which its passive grab holds from then on until the slave is freed. `isHeldBack`:
    /// the server holds back what it types, as `X11PassiveGrabs::heldKeysBackAt` says of the press.
    void noteGrabbedSlave(xcb_input_device_id_t slave, bool isHeldBack) { grabbedSlaves_[slave] = isHeldBack; }
    /// Frees every slave that was noted and not freed since: their presses are queued or dropped. Only sent.
    void freeGrabbedSlaves();
    /// Whether what the server held back of this slave's keys, until the latest `grab`, may still be on its way here.
    [[nodiscard]] bool hasFreed(xcb_input_device_id_t slave) const { return freedSlave_ == slave; }
    /// All that came before the answer to `grab` has been read.
    void noteAllRead() { freedSlave_.reset(); }
    /// Whether a passive grab still holds a slave, whose keys the master must not get yet.
    [[nodiscard]] bool hasGrabbedSlave() const { return !grabbedSlaves_.empty(); }
    /// The master never saw this release: repeats it, now or as soon as the slave is free.
    void noteMissedRelease(xcb_input_device_id_t slave, std::uint32_t keyCode);
    /// Repeats what was noted. Waits for the server where something was.
    void repeatMissedReleases();
    /// Sends the master a release of the key: its repeats end, and the later release by the hardware changes nothing.
    void releaseForMaster(std::uint32_t keyCode);
    /// Types a key for the client that has grabbed the keyboard. Does not wait for the server. No passive grab may be
    /// installed.
    void typeForHolder(std::uint32_t keyCode);
    /// The active window, as in `State::activeWindow`, when the keyboard is grabbed already. Waits for the server.
    [[nodiscard]] xcb_window_t activeWindow() const;
    /// Whether the keyboard could be grabbed; it is ungrabbed at once.
    [[nodiscard]] bool probe();

private:
    struct Release {
        xcb_input_device_id_t slave = 0;
        std::uint32_t keyCode = 0;
    };

    [[nodiscard]] xcb_input_xi_grab_device_cookie_t requestGrab(xcb_input_device_id_t device) const;
    [[nodiscard]] xcb_get_property_cookie_t requestActiveWindow() const;
    [[nodiscard]] xcb_window_t collectActiveWindow(xcb_get_property_cookie_t cookie) const;
    [[nodiscard]] bool isGranted(xcb_input_xi_grab_device_cookie_t cookie) const;
    void fakeKey(std::uint8_t type, std::uint32_t keyCode);

    const X11Connection& connection_;
    X11PassiveGrabs& grabs_;
    xcb_atom_t activeWindowProperty_ = XCB_ATOM_NONE;
    std::optional<xcb_input_device_id_t> master_;
    std::optional<xcb_input_device_id_t> freedSlave_;
    /// Of each slave that its passive grab holds, whether the server holds back what it types.
    std::map<xcb_input_device_id_t, bool> grabbedSlaves_;
    std::vector<Release> missedReleases_;
};

}  // namespace ferrowyn
