#pragma once

#include <memory>
#include <string>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/private_x_server.h"

namespace ferrowyn::x11test {

/// A real window manager with its own binding for Alt+Tab, started with a private configuration; running (it has
/// announced itself on the root window) when the constructor returns.
class WindowManagerProcess {
public:
    /// "openbox", "xfwm4", "icewm", "metacity", "i3", "kwin_x11", "mutter", "dwm" or "wmaker". With `replacing`, it
    /// takes over from a manager that runs already.
    WindowManagerProcess(const PrivateXServer& server, const std::string& name, bool replacing = false);

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] ChildProcess& process() { return *process_; }

private:
    std::string name_;
    std::unique_ptr<ChildProcess> process_;
};

}  // namespace ferrowyn::x11test
