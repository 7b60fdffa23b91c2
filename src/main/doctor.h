#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/switcher_options.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

/// The result of one check.
struct DoctorFinding {
    enum class Verdict {
        good,
        /// Switching works, but something else does not work or looks worse.
        notice,
        /// Switching cannot work.
        bad,
    };

    Verdict verdict = Verdict::good;
    std::string subject;
    std::string text;
    /// What the user can do; empty when there is nothing to do.
    std::string advice;

    friend bool operator==(const DoctorFinding&, const DoctorFinding&) = default;
};

using DoctorReport = std::vector<DoctorFinding>;

[[nodiscard]] bool switchingCanWork(const DoctorReport& report);
/// The report as text for users and bug reports: the outcome, then a line for each finding, with its advice below.
[[nodiscard]] std::string formatted(const DoctorReport& report);

/// Checks the parts of the session that are not the display: the bus, the user's files, the versions of the libraries.
/// Changes nothing. Needs a QCoreApplication.
class DoctorSession {
public:
    /// `busAddress` is the session bus's.
    DoctorSession(XdgFolders folders, std::optional<std::string> busAddress);

    /// Where the program's icon appears. `hasEmbeddingTray`: the display has a tray that embeds windows.
    [[nodiscard]] DoctorFinding trayHost(bool hasEmbeddingTray) const;
    [[nodiscard]] DoctorFinding autostart() const;
    [[nodiscard]] DoctorFinding settingsFile() const;
    [[nodiscard]] static DoctorFinding versions(const std::string& ownVersion);

    /// The stored trigger; the default when there is no valid one.
    [[nodiscard]] SwitcherModifier trigger() const;

private:
    [[nodiscard]] bool hasTrayHostOnBus() const;
    [[nodiscard]] std::filesystem::path settingsPath() const;

    XdgFolders folders_;
    std::optional<std::string> busAddress_;
};

/// Checks everything that switching needs in the session that the environment names; each check may rely on those
/// before it. Opens two small windows for a moment and restores the active window. Waits for the X server, the window
/// manager and the session bus. Needs a QCoreApplication.
[[nodiscard]] DoctorReport examineSession(const std::string& ownVersion);

}  // namespace ferrowyn
