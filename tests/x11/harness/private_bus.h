#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/private_x_server.h"

namespace ferrowyn::x11test {

/// A session bus of the test's own, whose services are clients of the private X server.
class PrivateBus {
public:
    explicit PrivateBus(const PrivateXServer& server);

    /// As in DBUS_SESSION_BUS_ADDRESS.
    [[nodiscard]] const std::string& address() const { return address_; }
    /// Ends the bus under its clients.
    void kill() { process_.reset(); }
    /// Starts it again at the same address.
    void restart();

private:
    void start(const std::vector<std::string>& arguments);

    ChildProcess::Options options_;
    std::unique_ptr<ChildProcess> process_;
    std::string address_;
};

}  // namespace ferrowyn::x11test
