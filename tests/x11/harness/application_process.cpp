#include "tests/x11/harness/application_process.h"

#include <sstream>
#include <stdexcept>

namespace ferrowyn::x11test {

namespace {

ChildProcess::Options childOptions(const PrivateXServer& server, const std::string& name,
                                   const std::vector<std::string>& titles) {
    ChildProcess::Options options;
    options.command = {FERROWYN_TEST_APPLICATION, name};
    options.command.insert(options.command.end(), titles.begin(), titles.end());
    options.environment = server.clientEnvironment();
    return options;
}

}  // namespace

ApplicationProcess::ApplicationProcess(const PrivateXServer& server, const std::string& name,
                                       const std::vector<std::string>& titles)
    : process_(childOptions(server, name, titles)) {
    if (!process_.waitForOutput("ready")) {
        throw std::runtime_error("waited for " + name + " to open its windows; it said: " + process_.output());
    }
    std::istringstream lines(process_.output());
    std::string word;
    for (xcb_window_t window = 0; lines >> word >> window;) {
        windows_.push_back(window);
    }
}

}  // namespace ferrowyn::x11test
