#include "tests/x11/harness/desktop_session.h"

#include <stdexcept>

namespace ferrowyn::x11test {

DesktopSession::DesktopSession(const std::string& managerName, const Options& options)
    : server(options.screens),
      manager(std::make_unique<WindowManagerProcess>(server, managerName)),
      desktop(server.display()),
      input(server.display()) {
    divideScreen(options.monitors);
}

ChildProcess DesktopSession::startClient(const std::vector<std::string>& command) const {
    return ChildProcess({.command = command, .environment = server.clientEnvironment(), .inheritedDescriptor = {}});
}

void DesktopSession::run(const std::vector<std::string>& command) const {
    ChildProcess process = startClient(command);
    if (process.waitForExit() != 0) {
        throw std::runtime_error(command.front() + " failed: " + process.output());
    }
}

void DesktopSession::divideScreen(const std::vector<std::string>& monitors) const {
    for (std::size_t index = 0; index < monitors.size(); ++index) {
        const bool isPrimary = index == 0;
        // The first monitor gets the server's only output. Otherwise RandR also keeps a monitor for the whole screen.
        run({"xrandr", "--setmonitor", (isPrimary ? "*monitor" : "monitor") + std::to_string(index), monitors[index],
             isPrimary ? "screen" : "none"});
    }
}

TestWindow& DesktopSession::openWindow(const TestWindow::Options& options) {
    windows.push_back(std::make_unique<TestWindow>(server.display(), options));
    return *windows.back();
}

}  // namespace ferrowyn::x11test
