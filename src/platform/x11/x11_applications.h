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

/// What an installed application is called.
struct X11InstalledApplication {
    std::string identifier;
    std::string localizedName;
    std::string desktopFilePath;
};

/// Tells which windows are one application, and what that is called. Windows of the same installed application (desktop
/// file) belong together, else those of one class, else those of one process: a terminal may have a process for each
/// window, and an office suite runs several applications in one. Safe on any thread; remembers what each identity led
/// to, since the same few come with every snapshot.
class X11ApplicationDirectory {
public:
    /// Finds the installed application that an identity names; nothing when there is none. Any thread.
    using Lookup = std::function<std::optional<X11InstalledApplication>(const X11ApplicationIdentity&)>;

    /// The windows of `ownProcess` are one application whatever they say, and it has that process's number: the logic
    /// knows its own windows by it.
    explicit X11ApplicationDirectory(Lookup lookup, std::optional<Pid> ownProcess = std::nullopt)
        : lookup_(std::move(lookup)), ownProcess_(ownProcess) {}

    /// Applications were installed or removed.
    void forgetAll();

    /// Null when the window is not listed.
    using FindWindow = std::function<const X11WindowFacts*(xcb_window_t)>;

    /// The number of the window's application: that of the process in which it was first seen, or, where another
    /// application of that process has it already, one that no process can have. A number stays with its application,
    /// also while none of its windows is open. `find` knows all windows: a dialog is part of the application of the
    /// window that it belongs to, if one process has both, whatever it calls itself.
    [[nodiscard]] Pid numberFor(const X11WindowFacts& window, const FindWindow& find) const;

    /// The application with this number; `windows` are all of its windows, at least one.
    [[nodiscard]] RunningApplication describe(Pid pid, const std::vector<const X11WindowFacts*>& windows) const;

    /// The first number given to an application that does not have the number of a process; above those that stand in
    /// for processes (`X11Owners`).
    static constexpr Pid firstNumberOfItsOwn = 0x60000000;

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
    mutable Pid nextNumber_ = firstNumberOfItsOwn;
};

/// The installed application that a window's identity names: by what its toolkit says first, which is meant to be a
/// desktop file's name, then by its class. Any thread.
[[nodiscard]] std::optional<X11InstalledApplication> findInstalledApplication(const DesktopEntries& entries,
                                                                              const X11ApplicationIdentity& identity);

}  // namespace ferrowyn
