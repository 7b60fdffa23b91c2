#pragma once

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/workspace.h"
#include "platform/x11/x11_application_identity.h"
#include "platform/x11/x11_window_facts.h"

namespace ferrowyn {

/// What an installed application is called.
struct X11InstalledApplication {
    std::string identifier;
    std::string localizedName;
    std::string desktopFilePath;
};

/// Turns the windows of a process into a running application with its name. Safe on any thread; remembers what each
/// identity led to, since the same few come with every snapshot.
class X11ApplicationDirectory {
public:
    /// Finds the installed application that an identity names; nothing when there is none. Any thread.
    using Lookup = std::function<std::optional<X11InstalledApplication>(const X11ApplicationIdentity&)>;

    explicit X11ApplicationDirectory(Lookup lookup) : lookup_(std::move(lookup)) {}

    /// Applications were installed or removed.
    void forgetAll();

    /// The application of one process; `windows` are all of its windows, at least one.
    [[nodiscard]] RunningApplication describe(Pid pid, const std::vector<const X11WindowFacts*>& windows) const;

private:
    [[nodiscard]] std::optional<X11InstalledApplication> installed(const X11ApplicationIdentity& identity) const;

    Lookup lookup_;
    mutable std::mutex mutex_;
    mutable std::unordered_map<std::string, std::optional<X11InstalledApplication>> known_;
};

}  // namespace ferrowyn
