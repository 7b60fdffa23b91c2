#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/switcher_options.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

/// One thing that was looked at.
struct DoctorFinding {
    enum class Verdict {
        good,
        /// Switching works without it, but something else does not, or looks worse.
        notice,
        /// Switching cannot work.
        bad,
    };

    Verdict verdict = Verdict::good;
    std::string subject;
    std::string text;
    /// What to do about it; empty when there is nothing to do.
    std::string advice;

    friend bool operator==(const DoctorFinding&, const DoctorFinding&) = default;
};

using DoctorReport = std::vector<DoctorFinding>;

[[nodiscard]] bool switchingCanWork(const DoctorReport& report);
/// For a person and for a bug report: the outcome, then a line for each finding, its advice below it.
[[nodiscard]] std::string formatted(const DoctorReport& report);

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

/// Looks at everything that switching needs in the session that the environment names, in the order in which one thing
/// builds on another. Opens two small windows for a moment and leaves everything as it was; waits for the X server, its
/// window manager and the session bus. With a QCoreApplication.
[[nodiscard]] DoctorReport examineSession(const std::string& ownVersion);

}  // namespace ferrowyn
