#include "tests/x11/switching/switching_desk.h"

#include <algorithm>
#include <csignal>
#include <stdexcept>
#include <utility>

namespace ferrowyn::x11test {

SwitchingDesk::SwitchingDesk(const std::string& managerName, const Options& options)
    : DesktopSession(managerName, {.screens = options.screens, .monitors = options.monitors}),
      programOptions(options.program) {}

std::map<std::string, std::string> SwitchingDesk::programEnvironment() const {
    auto environment = server.clientEnvironment();
    for (const auto& [name, value] : programOptions.environment) {
        environment[name] = value;
    }
    return environment;
}

SwitchingDesk::Answer SwitchingDesk::ask(const std::vector<std::string>& arguments,
                                         const std::map<std::string, std::string>& environment) {
    ChildProcess::Options options{.command = {FERROWYN_PROGRAM}, .environment = environment, .inheritedDescriptor = {}};
    options.command.insert(options.command.end(), arguments.begin(), arguments.end());
    ChildProcess process(options);
    const auto status = process.waitForExit(milliseconds{30000});
    return {status, process.output()};
}

std::optional<xcb_window_t> SwitchingDesk::findWindow(const std::string& title) const {
    if (const auto managed = desktop.windowTitled(title)) {
        return managed;
    }
    const auto shown = desktop.shownTopLevels();
    const auto found =
        std::ranges::find_if(shown, [&](xcb_window_t window) { return desktop.text(window, "_NET_WM_NAME") == title; });
    return found == shown.end() ? std::nullopt : std::optional(*found);
}

std::optional<xcb_window_t> SwitchingDesk::waitForWindow(const std::string& title) {
    static_cast<void>(desktop.waitUntil([&] { return findWindow(title).has_value(); }));
    return findWindow(title);
}

void SwitchingDesk::writeSwitcherSetting(const std::string& line) const {
    server.home().write(".config/Ferrowyn/Ferrowyn.ini", "[switcher]\n" + line + "\n");
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
    ASSERT_TRUE(program->waitForFirst(window))
        << "waited for window " << window << " to lead the list; it said: " << program->process().output();
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
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go; it said: " << program->process().output();
    EXPECT_TRUE(program->waitForFirst(window)) << "waited for window " << window << " to lead the list";
}

void SwitchingDesk::expectManagerSwitches() {
    constexpr milliseconds perPress{4000};
    const Deadline deadline(patience);
    const auto active = desktop.activeWindow();
    const auto shown = desktop.shownTopLevels();
    const auto hasSwitched = [&] {
        const auto now = desktop.activeWindow();
        return now != active && now != XCB_WINDOW_NONE;
    };
    // Pressed until the manager answers: under load it misses a key now and then, and some listen for their keys only a
    // while after they manage windows.
    while (!hasSwitched() && !deadline.hasPassed()) {
        input.press(key::leftAlt);
        input.tap(key::tab);
        // A manager with a popup misses the release of Alt while it is still about to take the keyboard for it; one
        // without switches now, or on the release.
        static_cast<void>(
            desktop.waitUntil([&] { return desktop.shownTopLevels() != shown || hasSwitched(); }, perPress));
        EXPECT_FALSE(desktop.visiblePanel()) << "the trigger opened the switcher";
        input.release(key::leftAlt);
        static_cast<void>(desktop.waitUntil(hasSwitched, perPress));
    }
    EXPECT_TRUE(hasSwitched()) << "waited for the window manager to switch";
    // A slow manager answers the press before the last one, opens its popup for the last one and waits there for a
    // release that it has missed.
    const auto isDone = [&] { return desktop.shownTopLevels() == shown && desktop.keyboardIsFree(); };
    bool isFree = desktop.waitUntil(isDone, perPress);
    if (!isFree) {
        input.tap(key::leftAlt);
        isFree = desktop.waitUntil(isDone);
    }
    EXPECT_TRUE(isFree) << "waited for the window manager's popup to go";
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
