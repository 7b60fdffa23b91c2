#pragma once

#include <memory>
#include <string>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/private_bus.h"
#include "tests/x11/harness/private_x_server.h"

namespace ferrowyn::x11test {

/// A real tray with a private configuration, ended with this object: "lxqt-panel", which only shows status notifiers,
/// "xfce4-panel", which shows them and embeds windows, both at the screen's upper edge, or "trayer", which only embeds
/// windows, at its lower edge.
class TrayHostProcess {
public:
    TrayHostProcess(const PrivateXServer& server, const PrivateBus& bus, const std::string& name)
        : TrayHostProcess(server, name, bus.address()) {}
    /// Where the session has no bus; "trayer" needs none.
    TrayHostProcess(const PrivateXServer& server, const std::string& name)
        : TrayHostProcess(server, name, "disabled:") {}

    [[nodiscard]] ChildProcess& process() { return *process_; }

private:
    TrayHostProcess(const PrivateXServer& server, const std::string& name, const std::string& busAddress);

    std::unique_ptr<ChildProcess> process_;
};

}  // namespace ferrowyn::x11test
