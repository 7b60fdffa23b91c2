#pragma once

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <bitset>
#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace ferrowyn {

class X11Connection;
class X11KeyboardGrabs;

/// The active grab of a master keyboard, held from the trigger to the end of a session. Tap thread.
///
/// A passive grab at a slave floats the slave while it is active: what happens to its keys meanwhile never reaches the
/// master, and a modifier would stay down there for good. Hence the slave is freed in the same breath in which its
/// master is taken, and releases that came with the slave's id are repeated for the master. Where the server has held
/// the slave's keys back, they all come with the slave's id, in their order, as it is freed.
class X11KeyboardSeizure {
public:
    /// Waits for the server.
    X11KeyboardSeizure(const X11Connection& connection, X11KeyboardGrabs& grabs);

    /// By key code.
    using KeysDown = std::bitset<256>;

    /// What the server said when the keyboard was taken.
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
    [[nodiscard]] bool isHeldOf(xcb_input_device_id_t master) const { return master_ == master; }

    /// Takes the master of this slave, frees the slave and those that were noted as grabbed, gives back the passive
    /// grabs (they would float the slave again at each further trigger), and repeats the releases that the master
    /// missed. One round trip. Nothing when another client holds the keyboard; the passive grabs are gone then all the
    /// same.
    [[nodiscard]] std::optional<State> take(std::optional<xcb_input_device_id_t> slave);
    /// The caller puts the passive grabs back first, so that no press falls between. Only sent.
    void giveBack();
    /// Frees a slave that its passive grab still holds. Returns whether the server held back what it typed, which comes
    /// before this connection's next answer. Only sent.
    bool freeSlave(xcb_input_device_id_t slave);
    /// A press came from this slave, which its passive grab holds from then on until the slave is freed. `isHeldBack`:
    /// the server holds back what it types, as `X11KeyboardGrabs::heldKeysBackAt` says of the press.
    void noteGrabbedSlave(xcb_input_device_id_t slave, bool isHeldBack) { grabbedSlaves_[slave] = isHeldBack; }
    /// Frees every slave that was noted and not freed since: their presses are queued or dropped. Only sent.
    void freeGrabbedSlaves();
    /// Whether what the server held back of this slave's keys, until the latest `take`, may still be on its way here.
    [[nodiscard]] bool hasFreed(xcb_input_device_id_t slave) const { return freedSlave_ == slave; }
    /// All that came before the answer to `take` has been read.
    void noteAllRead() { freedSlave_.reset(); }
    /// The master never saw this release: repeats it, now or as soon as the slave is free.
    void noteMissedRelease(xcb_input_device_id_t slave, std::uint32_t keyCode);
    /// Repeats what was noted. Waits for the server only where a program typed.
    void repeatMissedReleases();
    /// Lets the key go for the master: it repeats no longer, and the hardware's own release will be nothing new.
    void releaseForMaster(std::uint32_t keyCode);
    /// Types a key for whoever holds the keyboard. Only sent. No passive grab may be installed.
    void typeForHolder(std::uint32_t keyCode);
    /// What `State` says of it, when the keyboard is held already. Waits for the server.
    [[nodiscard]] xcb_window_t activeWindow() const;
    /// Whether the keyboard could be taken; it is given back at once.
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
    void repeatReleasesOfProgram(xcb_input_device_id_t testKeyboard, const std::vector<Release>& releases);
    void fakeKey(std::uint8_t type, std::uint32_t keyCode);

    const X11Connection& connection_;
    X11KeyboardGrabs& grabs_;
    xcb_atom_t activeWindowProperty_ = XCB_ATOM_NONE;
    std::optional<xcb_input_device_id_t> master_;
    std::optional<xcb_input_device_id_t> freedSlave_;
    /// Of each slave that its passive grab holds, whether the server holds back what it types.
    std::map<xcb_input_device_id_t, bool> grabbedSlaves_;
    std::vector<Release> missedReleases_;
};

}  // namespace ferrowyn
