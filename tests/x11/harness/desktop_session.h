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

/// A private X server with a window manager, and the means to observe its screen, send input and start clients. Used by
/// all tests that need a whole desktop.
class DesktopSession {
public:
    struct Options {
        std::vector<std::string> screens{"1280x800x24"};
        /// Divides the screen into monitors, in the format of xrandr: "width/mm x height/mm + x + y" without blanks.
        /// The first one is the primary monitor.
        std::vector<std::string> monitors;
    };

    explicit DesktopSession(const std::string& managerName) : DesktopSession(managerName, Options{}) {}
    DesktopSession(const std::string& managerName, const Options& options);

    /// Starts a program as a client of this desktop.
    [[nodiscard]] ChildProcess startClient(const std::vector<std::string>& command) const;
    /// Runs a command on this desktop and waits for its end; throws when it fails.
    void run(const std::vector<std::string>& command) const;
    /// Replaces the monitors that the screen was divided into.
    void divideScreen(const std::vector<std::string>& monitors) const;
    TestWindow& openWindow(const TestWindow::Options& options);
    /// The XID of the window that was opened as number `ordinal`, counted from 1.
    [[nodiscard]] xcb_window_t window(std::size_t ordinal) const { return windows.at(ordinal - 1)->id(); }

    PrivateXServer server;
    /// A test may end the manager or start another one.
    std::unique_ptr<WindowManagerProcess> manager;
    TestDesktop desktop;
    TestInput input;
    std::vector<std::unique_ptr<TestWindow>> windows;
};

}  // namespace ferrowyn::x11test
