#include "tests/x11/harness/private_bus.h"

#include <stdexcept>

namespace ferrowyn::x11test {

PrivateBus::PrivateBus(const PrivateXServer& server) {
    options_.environment = server.clientEnvironment();
    start({});
}

void PrivateBus::restart() {
    kill();
    start({"--address=" + address_});
}

void PrivateBus::start(const std::vector<std::string>& arguments) {
    auto options = options_;
    options.command = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"};
    options.command.insert(options.command.end(), arguments.begin(), arguments.end());
    process_ = std::make_unique<ChildProcess>(options);
    if (!process_->waitForOutput(",guid=")) {
        throw std::runtime_error("waited for dbus-daemon to say its address");
    }
    // Without the identity, as a user's bus has its address: a bus that is started again has another one.
    const std::string said = process_->output();
    const auto begin = said.find("unix:");
    address_ = said.substr(begin, said.find(",guid=", begin) - begin);
}

}  // namespace ferrowyn::x11test
