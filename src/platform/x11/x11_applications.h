#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "platform/workspace.h"
#include "platform/x11/x11_window_properties.h"

namespace ferrowyn {

class DesktopEntries;

/// The names of an installed application.
struct X11InstalledApplication {
    std::string identifier;
    std::string localizedName;
    std::string desktopFilePath;
};

/// Groups windows into applications and names these. Windows of one installed application (desktop file) belong
/// together, otherwise those of one WM_CLASS, otherwise those of one process: a terminal may have a process for each
/// window, and an office suite may run several applications in one process. Caches the lookups. Any thread; owned by
/// `X11Platform`.
class X11ApplicationDirectory {
public:
    /// Finds the installed application for an identity; nullopt when there is none. Any thread.
    using Lookup = std::function<std::optional<X11InstalledApplication>(const X11ApplicationIdentity&)>;

    /// All windows of `ownProcess` are one application, whose number is the process id, because the logic recognises
    /// this program's windows by it.
    explicit X11ApplicationDirectory(Lookup lookup, std::optional<Pid> ownProcess = std::nullopt)
        : lookup_(std::move(lookup)), ownProcess_(ownProcess) {}

    /// Clears the cached lookups after applications were installed or removed.
    void forgetAll();

    /// Null when the window is not listed.
    using FindWindow = std::function<const X11WindowFacts*(xcb_window_t)>;

    /// The number of the window's application. It is the id of the process in which the application was first seen or,
    /// when another application of that process has it already, a number that no process can have. An application keeps
    /// its number also while it has no window. `find` must know all windows: a dialog belongs to the application of its
    /// parent window when both are of one process.
    [[nodiscard]] Pid numberFor(const X11WindowFacts& window, const FindWindow& find) const;

    /// The application with this number; `windows` are all of its windows, at least one.
    [[nodiscard]] RunningApplication describe(Pid pid, const std::vector<const X11WindowFacts*>& windows) const;

    /// The first number for applications that do not have a process id; above the stand-ins of `X11Owners`.
    static constexpr Pid firstArtificialNumber = 0x60000000;

private:
    [[nodiscard]] std::optional<X11InstalledApplication> installed(const X11ApplicationIdentity& identity) const;
    /// The same text for all windows of one application.
    [[nodiscard]] std::string keyOf(const X11WindowFacts& window) const;

    Lookup lookup_;
    std::optional<Pid> ownProcess_;
    mutable std::mutex mutex_;
    mutable std::unordered_map<std::string, std::optional<X11InstalledApplication>> known_;
    mutable std::unordered_map<std::string, Pid> numbers_;
    mutable std::unordered_set<Pid> usedNumbers_;
    mutable Pid nextNumber_ = firstArtificialNumber;
};

/// Finds the installed application for a window's identity: first by the desktop file's name, which toolkits set on
/// their windows, then by WM_CLASS. Any thread.
[[nodiscard]] std::optional<X11InstalledApplication> findInstalledApplication(const DesktopEntries& entries,
                                                                              const X11ApplicationIdentity& identity);

}  // namespace ferrowyn
