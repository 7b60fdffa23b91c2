#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/switcher_options.h"
#include "main/doctor.h"

namespace ferrowyn {

class X11Connection;

/// The version of the X server as text, from the release number that it sends to clients. For an unknown `vendor`, the
/// number itself.
[[nodiscard]] std::string serverVersion(std::string_view vendor, std::uint32_t releaseNumber);

/// Checks the X server, the window manager, the input extension, the keys and the compositor. Reads only the window
/// manager's window. Each check opens a connection to `display` (in the form of DISPLAY), because the requests of one
/// client change what the server grants to it later.
class DoctorDisplay {
public:
    DoctorDisplay(const X11Connection& connection, std::string display, SwitcherModifier trigger);

    [[nodiscard]] DoctorFinding server() const;
    [[nodiscard]] DoctorFinding windowManager() const;
    [[nodiscard]] DoctorFinding inputExtension() const;
    /// See `activationFinding`.
    [[nodiscard]] DoctorFinding activation() const;
    /// Grabs the trigger keys as the program does, and releases them.
    [[nodiscard]] DoctorFinding triggerKeys() const;
    /// Grabs the keyboard, and releases it.
    [[nodiscard]] DoctorFinding secureInput() const;
    [[nodiscard]] DoctorFinding compositor() const;

    /// Whether the program runs, and the result of its latest switches.
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
