#include "tests/x11/switching_fixture.h"

#include <stdexcept>

namespace ferrowyn::x11test {

SwitchingFixture::SwitchingFixture(const std::string& managerName, const Options& options)
    : server(options.screens),
      manager(std::make_unique<WindowManagerProcess>(server, managerName)),
      desktop(server.display()),
      input(server.display()),
      programOptions_(options.program) {
    for (std::size_t index = 0; index < options.monitors.size(); ++index) {
        ChildProcess::Options xrandr;
        // The server's one output goes to the first monitor, or the undivided screen would remain beside them.
        xrandr.command = {"xrandr", "--setmonitor", "monitor" + std::to_string(index), options.monitors[index],
                          index == 0 ? "screen" : "none"};
        xrandr.environment = server.clientEnvironment();
        if (ChildProcess(xrandr).waitForExit() != 0) {
            throw std::runtime_error("the screen could not be divided into monitors");
        }
    }
}

TestWindow& SwitchingFixture::openWindow(const TestWindow::Options& options) {
    windows.push_back(std::make_unique<TestWindow>(server.display(), options));
    return *windows.back();
}

void SwitchingFixture::openWindows(int count) {
    for (int ordinal = 1; ordinal <= count; ++ordinal) {
        const auto& opened = openWindow({.title = "Window " + std::to_string(windows.size() + 1),
                                         .x = 40 + 30 * (ordinal % 20),
                                         .y = 60 + 20 * (ordinal % 20),
                                         .colour = 0x335577U + static_cast<unsigned>(ordinal) * 0x10305U});
        if (!desktop.waitForActiveWindow(opened.id(), milliseconds{1000})) {
            // Not every manager focuses a window that opens behind the user's back.
            desktop.activate(opened.id());
            ASSERT_TRUE(desktop.waitForActiveWindow(opened.id())) << "waited for window " << ordinal << " to be active";
        }
    }
}

void SwitchingFixture::startProgram(std::optional<std::size_t> listed) {
    program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, programOptions_);
    ASSERT_TRUE(program->waitUntilActive()) << "waited for the services; it said: " << program->process().output();
    if (!windows.empty()) {
        ASSERT_TRUE(program->waitForList(listed.value_or(windows.size()), desktop.activeWindow()))
            << "waited for the window list; it said: " << program->process().output();
    }
}

void SwitchingFixture::use(xcb_window_t window) {
    desktop.activate(window);
    ASSERT_TRUE(desktop.waitForActiveWindow(window)) << "waited for window " << window << " to be active";
    ASSERT_TRUE(program->waitForFirst(window)) << "waited for window " << window << " to lead the list";
}

void SwitchingFixture::hold(int times) {
    input.press(key::leftAlt);
    for (int time = 0; time < times; ++time) {
        input.tap(key::tab);
    }
    ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel; it said: " << program->process().output();
}

void SwitchingFixture::holdBackward() {
    input.press(key::leftAlt);
    input.press(key::leftShift);
    input.tap(key::tab);
    input.release(key::leftShift);
    ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel";
}

void SwitchingFixture::letGo() {
    input.release(key::leftAlt);
}

void SwitchingFixture::expectSwitchTo(xcb_window_t window) {
    EXPECT_TRUE(desktop.waitForActiveWindow(window))
        << "waited for window " << window << ", but " << desktop.activeWindow() << " is active";
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(program->waitForFirst(window)) << "waited for window " << window << " to lead the list";
}

void SwitchingFixture::expectQuiet() {
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(desktop.waitForUntouchedKeyboard())
        << (desktop.anyKeyIsDown() ? "a key stayed down" : "a grab was left behind");
}

}  // namespace ferrowyn::x11test
