#include "tests/x11/switching/switching_desk.h"

#include <algorithm>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace ferrowyn::x11test {

SwitchingDesk::SwitchingDesk(const std::string& managerName, const Options& options)
    : server(options.screens),
      manager(std::make_unique<WindowManagerProcess>(server, managerName)),
      desktop(server.display()),
      input(server.display()),
      programOptions(options.program) {
    for (std::size_t index = 0; index < options.monitors.size(); ++index) {
        // The server's one output goes to the first monitor, or the undivided screen would remain beside them.
        run({"xrandr", "--setmonitor", "monitor" + std::to_string(index), options.monitors[index],
             index == 0 ? "screen" : "none"});
    }
}

ChildProcess SwitchingDesk::startClient(const std::vector<std::string>& command) const {
    return ChildProcess({.command = command, .environment = server.clientEnvironment(), .inheritedDescriptor = {}});
}

void SwitchingDesk::run(const std::vector<std::string>& command) {
    ChildProcess process = startClient(command);
    if (process.waitForExit() != 0) {
        throw std::runtime_error(command.front() + " failed: " + process.output());
    }
}

void SwitchingDesk::writeSwitcherSetting(const std::string& line) const {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini", "[switcher]\n" + line + "\n");
}

TestWindow& SwitchingDesk::openWindow(const TestWindow::Options& options) {
    windows.push_back(std::make_unique<TestWindow>(server.display(), options));
    return *windows.back();
}

void SwitchingDesk::openActive(const TestWindow::Options& options) {
    makeActive(openWindow(options).id());
}

void SwitchingDesk::makeActive(xcb_window_t window) {
    const auto isManaged = [&] {
        const auto clients = desktop.clientList();
        return std::find(clients.begin(), clients.end(), window) != clients.end();
    };
    ASSERT_TRUE(desktop.waitUntil(isManaged)) << "waited for window " << window << " to be managed";
    // Not every manager focuses a window that opens behind the user's back.
    desktop.activate(window);
    auto other = desktop.activeWindow();
    const auto isActive = [&] {
        // One that opened before may get its focus only now; a user would ask for this one once more.
        if (const auto active = desktop.activeWindow(); active != window && std::exchange(other, active) != active) {
            desktop.activate(window);
        }
        return desktop.activeWindow() == window;
    };
    ASSERT_TRUE(desktop.waitUntil(isActive))
        << "waited for window " << window << " to be active; " << desktop.activeWindow() << " is";
}

void SwitchingDesk::crashManager() {
    const auto check = desktop.windowManagerCheckWindow();
    ASSERT_TRUE(check);
    xcb_kill_client(desktop.connection(), *check);
    xcb_flush(desktop.connection());
    ASSERT_TRUE(manager->process().waitForExit()) << "waited for the manager to end";
    manager.reset();
}

void SwitchingDesk::openWindows(int count) {
    for (int ordinal = 1; ordinal <= count; ++ordinal) {
        openActive({.title = "Window " + std::to_string(windows.size() + 1),
                    .x = 40 + 30 * (ordinal % 20),
                    .y = 60 + 20 * (ordinal % 20),
                    .colour = 0x335577U + static_cast<unsigned>(ordinal) * 0x10305U});
    }
}

void SwitchingDesk::startProgram(std::optional<std::size_t> listed) {
    program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, programOptions);
    ASSERT_TRUE(program->waitUntilActive()) << "waited for the services; it said: " << program->process().output();
    if (!windows.empty()) {
        ASSERT_TRUE(program->waitForList(listed.value_or(windows.size()), desktop.activeWindow()))
            << "waited for the window list; it said: " << program->process().output();
    }
}

void SwitchingDesk::use(xcb_window_t window) {
    makeActive(window);
    ASSERT_TRUE(program->waitForFirst(window)) << "waited for window " << window << " to lead the list";
}

void SwitchingDesk::hold(int times) {
    input.press(key::leftAlt);
    for (int time = 0; time < times; ++time) {
        input.tap(key::tab);
    }
    ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel; it said: " << program->process().output();
}

void SwitchingDesk::holdBackward() {
    input.press(key::leftAlt);
    input.press(key::leftShift);
    input.tap(key::tab);
    input.release(key::leftShift);
    ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel";
}

void SwitchingDesk::type(std::initializer_list<std::uint8_t> keyCodes) {
    for (const auto keyCode : keyCodes) {
        input.tap(keyCode);
    }
}

void SwitchingDesk::letGo() {
    input.release(key::leftAlt);
}

void SwitchingDesk::expectSwitchTo(xcb_window_t window) {
    EXPECT_TRUE(desktop.waitForActiveWindow(window))
        << "waited for window " << window << ", but " << desktop.activeWindow()
        << " is active; it said: " << program->process().output();
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(program->waitForFirst(window)) << "waited for window " << window << " to lead the list";
}

void SwitchingDesk::expectQuiet() {
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(desktop.waitForUntouchedKeyboard())
        << (desktop.anyKeyIsDown() ? "a key stayed down" : "a grab was left behind");
}

void SwitchingDesk::expectPanelWidth(int width) {
    EXPECT_TRUE(desktop.waitUntil([&] {
        const auto panel = desktop.visiblePanel();
        const auto place = panel ? desktop.placeOf(*panel) : std::nullopt;
        return place && place->width == width;
    })) << "waited for a panel "
        << width << " wide";
}

TestDesktop::Place SwitchingDesk::panelPlace() const {
    const auto panel = desktop.visiblePanel();
    const auto place = panel ? desktop.placeOf(*panel) : std::nullopt;
    if (!place) {
        throw std::runtime_error("the panel is not on the screen");
    }
    return *place;
}

void SwitchingDesk::expectCleanEnd() {
    expectQuiet();
    if (program) {
        program->process().signal(SIGTERM);
        EXPECT_EQ(program->process().waitForExit(), 0) << "it said: " << program->process().output();
        EXPECT_EQ(program->sanitizerReport(), "");
    }
}

}  // namespace ferrowyn::x11test
