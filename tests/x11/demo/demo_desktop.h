#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/ferrowyn_program.h"
#include "tests/x11/harness/private_x_server.h"
#include "tests/x11/harness/settings_file.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/window_manager_process.h"

namespace ferrowyn::x11test {

/// A small desktop with real applications: a window manager with its own Alt+Tab, six windows on two desktops, one of
/// them minimised, and the switcher.
class DemoDesktop {
public:
    explicit DemoDesktop(const std::string& program);

    /// Another start of the program, with this argument, until it ends: what it says, nothing when all is well.
    [[nodiscard]] std::string ask(const std::string& argument) const;

    PrivateXServer server;
    SettingsFile settings{server};
    TestDesktop desktop;
    TestInput input;
    std::unique_ptr<WindowManagerProcess> manager;
    std::unique_ptr<FerrowynProgram> program;

    xcb_window_t files = 0;
    xcb_window_t notes = 0;
    xcb_window_t calculator = 0;
    xcb_window_t editor = 0;
    xcb_window_t build = 0;
    xcb_window_t shell = 0;

private:
    void paintBackground();
    /// Starts an application and waits for its window, which becomes the active one.
    xcb_window_t launch(const std::vector<std::string>& command, const TestDesktop::Place& place);
    void arrange();

    std::string programPath_;
    std::vector<std::unique_ptr<ChildProcess>> applications_;
};

}  // namespace ferrowyn::x11test
