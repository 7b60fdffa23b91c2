#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/ferrowyn_program.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {

/// How wide the panel is in these layouts.
inline constexpr int listWidth = 640, gridWidth = 760;

/// A private desktop with a real window manager, on which the real program switches between real windows.
class SwitchingDesk {
public:
    struct Options {
        std::vector<std::string> screens{"1280x800x24"};
        /// Divides the screen into monitors, as RandR describes them: "width/mm x height/mm + x + y" without blanks.
        std::vector<std::string> monitors;
        FerrowynProgram::Options program;
    };

    explicit SwitchingDesk(const std::string& managerName) : SwitchingDesk(managerName, Options{}) {}
    SwitchingDesk(const std::string& managerName, const Options& options);

    PrivateXServer server;
    std::unique_ptr<WindowManagerProcess> manager;
    TestDesktop desktop;
    TestInput input;
    std::vector<std::unique_ptr<TestWindow>> windows;
    std::unique_ptr<FerrowynProgram> program;
    /// What the program is started with.
    FerrowynProgram::Options programOptions;

    /// Opens windows "Window 1" … one after the other, each active in its turn, so that the last one opened is the most
    /// recently used one.
    void openWindows(int count);
    TestWindow& openWindow(const TestWindow::Options& options);
    /// Opens a window and makes it the active one.
    void openActive(const TestWindow::Options& options);
    /// Makes a window of another process the active one as a pager would, once the manager has it.
    void makeActive(xcb_window_t window);
    /// Ends the manager as a crash does: the server itself gives the windows back. A manager that is asked to end may
    /// be killed on the way, and leave one of them unmapped for ever.
    void crashManager();
    /// Starts a program as a client of this desktop.
    [[nodiscard]] ChildProcess startClient(const std::vector<std::string>& command) const;
    /// Runs a command on this desktop, which must succeed.
    void run(const std::vector<std::string>& command);
    /// A line of the section "switcher" in the user's settings file; before the program starts.
    void writeSwitcherSetting(const std::string& line) const;
    /// Starts the program and waits until it lists `listed` windows (all that were opened, when not given).
    void startProgram(std::optional<std::size_t> listed = std::nullopt);
    /// The `ordinal`-th window opened, counted from 1.
    [[nodiscard]] xcb_window_t window(std::size_t ordinal) const { return windows.at(ordinal - 1)->id(); }

    /// Makes the window the active one as a pager would, and waits until the program's list has it in front.
    void use(xcb_window_t window);
    /// Holds Alt, taps Tab `times`, and waits for the panel; Alt stays down.
    void hold(int times = 1);
    void holdBackward();
    void type(std::initializer_list<std::uint8_t> keyCodes);
    void letGo();
    /// Waits until this window is active and the panel is gone, and the program's list has it in front.
    void expectSwitchTo(xcb_window_t window);
    /// Waits until the panel has this width.
    void expectPanelWidth(int width);
    /// Where the panel is; it must be on the screen.
    [[nodiscard]] TestDesktop::Place panelPlace() const;
    /// Nothing is left over: no panel, no key down, no grab.
    void expectQuiet();
    /// The same, and the program ends by itself when asked to, without a sanitizer's report.
    void expectCleanEnd();
};

/// A test that has a desk of its own, on which nothing may be left over at its end and whose program must end well.
template <typename Test>
class DeskTest : public Test, protected SwitchingDesk {
protected:
    explicit DeskTest(const std::string& nameOfManager) : SwitchingDesk(nameOfManager) {}
    DeskTest(const std::string& nameOfManager, const SwitchingDesk::Options& options)
        : SwitchingDesk(nameOfManager, options) {}

    void TearDown() override { expectCleanEnd(); }
};

/// The parameter is the window manager's name.
class ManagedDeskTest : public DeskTest<testing::TestWithParam<const char*>> {
protected:
    ManagedDeskTest() : DeskTest(GetParam()) {}
    explicit ManagedDeskTest(const SwitchingDesk::Options& options) : DeskTest(GetParam(), options) {}
};

inline std::string managerName(const testing::TestParamInfo<const char*>& instance) {
    return instance.param;
}

}  // namespace ferrowyn::x11test
