#include "tests/x11/harness/private_bus.h"

#include <stdexcept>

namespace ferrowyn::x11test {

PrivateBus::PrivateBus(const PrivateXServer& server) {
    ChildProcess::Options options;
    options.command = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"};
    options.environment = server.clientEnvironment();
    process_ = std::make_unique<ChildProcess>(options);
    if (!process_->waitForOutput("\n")) {
        throw std::runtime_error("waited for dbus-daemon to say its address");
    }
    const std::string said = process_->output();
    address_ = said.substr(0, said.find_first_of("\r\n"));
}

}  // namespace ferrowyn::x11test
