#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/switcher_options.h"
#include "main/doctor.h"

namespace ferrowyn {

class X11Connection;

/// The server's version as it calls itself, from the number with which it introduces itself to clients; that number
/// itself where `vendor` is not known to count so.
[[nodiscard]] std::string serverVersion(std::string_view vendor, std::uint32_t releaseNumber);

/// What the X server and its clients are like for the program: the server, the window manager, the input extension, the
/// keys, the compositor. Reads no window but the manager's own. Each part of the look has a connection of its own to
/// `display` (as in DISPLAY), for what one asks changes what the server grants to the next.
class DoctorDisplay {
public:
    DoctorDisplay(const X11Connection& connection, std::string display, SwitcherModifier trigger);

    [[nodiscard]] DoctorFinding server() const;
    [[nodiscard]] DoctorFinding windowManager() const;
    [[nodiscard]] DoctorFinding inputExtension() const;
    /// Asks the manager to activate two windows of the doctor's own, one after the other, and what was active before in
    /// the end.
    [[nodiscard]] DoctorFinding activation() const;
    /// Tries to take the trigger keys as the program does, and gives them back.
    [[nodiscard]] DoctorFinding triggerKeys() const;
    /// Tries to take the keyboard, and gives it back.
    [[nodiscard]] DoctorFinding secureInput() const;
    [[nodiscard]] DoctorFinding compositor() const;

    /// Whether the program runs, and what has come of the latest switches there.
    [[nodiscard]] DoctorFinding program() const;

    [[nodiscard]] bool hasEmbeddingTray() const;
    [[nodiscard]] bool isProgramRunning() const;

private:
    [[nodiscard]] bool hasOwner(const std::string& selection) const;

    const X11Connection& connection_;
    std::string display_;
    SwitcherModifier trigger_;
};

}  // namespace ferrowyn
