#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {

/// A private X server with a window manager, and what a person has there: a look at the screen, keyboard, pointer and
/// windows. Every test that works on a whole desktop stands on one.
class DesktopSession {
public:
    struct Options {
        std::vector<std::string> screens{"1280x800x24"};
        /// Divides the screen into monitors, as RandR describes them: "width/mm x height/mm + x + y" without blanks.
        /// The first one is the primary monitor.
        std::vector<std::string> monitors;
    };

    explicit DesktopSession(const std::string& managerName) : DesktopSession(managerName, Options{}) {}
    DesktopSession(const std::string& managerName, const Options& options);

    /// Starts a program as a client of this desktop.
    [[nodiscard]] ChildProcess startClient(const std::vector<std::string>& command) const;
    /// Runs a command on this desktop to its end; throws when it fails.
    void run(const std::vector<std::string>& command) const;
    /// Replaces the monitors that the screen was divided into.
    void divideScreen(const std::vector<std::string>& monitors) const;
    TestWindow& openWindow(const TestWindow::Options& options);
    /// The `ordinal`-th window opened, counted from 1.
    [[nodiscard]] xcb_window_t window(std::size_t ordinal) const { return windows.at(ordinal - 1)->id(); }

    PrivateXServer server;
    /// A test may end it or start another one.
    std::unique_ptr<WindowManagerProcess> manager;
    TestDesktop desktop;
    TestInput input;
    std::vector<std::unique_ptr<TestWindow>> windows;
};

}  // namespace ferrowyn::x11test
