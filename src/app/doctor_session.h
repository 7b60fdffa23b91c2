#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "app/doctor_report.h"
#include "core/switcher_options.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

/// What the session is like for the program beside the display: its bus, the user's files, the versions of what is
/// installed. Changes nothing. With a QCoreApplication.
class DoctorSession {
public:
    /// `busAddress` is the session bus's.
    DoctorSession(XdgFolders folders, std::optional<std::string> busAddress);

    /// Where the program's icon goes. `hasEmbeddingTray`: the display has a tray of the old kind.
    [[nodiscard]] DoctorFinding trayHost(bool hasEmbeddingTray) const;
    [[nodiscard]] DoctorFinding autostart() const;
    [[nodiscard]] DoctorFinding settingsFile() const;
    [[nodiscard]] static DoctorFinding versions(const std::string& ownVersion);

    /// As stored; the default where nothing sensible is.
    [[nodiscard]] SwitcherModifier trigger() const;

private:
    [[nodiscard]] bool hasTrayHostOnBus() const;
    [[nodiscard]] std::filesystem::path settingsPath() const;

    XdgFolders folders_;
    std::optional<std::string> busAddress_;
};

}  // namespace ferrowyn
