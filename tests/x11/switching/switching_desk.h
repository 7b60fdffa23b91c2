#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/desktop_session.h"
#include "tests/x11/harness/ferrowyn_program.h"

namespace ferrowyn::x11test {

/// How wide the panel is in these layouts.
inline constexpr int listWidth = 640, gridWidth = 760;

/// A desktop session in which the real program switches between real windows.
class SwitchingDesk : public DesktopSession {
public:
    struct Options {
        std::vector<std::string> screens{"1280x800x24"};
        /// As in DesktopSession::Options.
        std::vector<std::string> monitors;
        FerrowynProgram::Options program;
    };

    explicit SwitchingDesk(const std::string& managerName) : SwitchingDesk(managerName, Options{}) {}
    SwitchingDesk(const std::string& managerName, const Options& options);

    std::unique_ptr<FerrowynProgram> program;
    /// What the program is started with.
    FerrowynProgram::Options programOptions;

    /// Opens windows "Window 1" … one after the other, each active in its turn, so that the last one opened is the most
    /// recently used one.
    void openWindows(int count);
    /// Opens a window and makes it the active one.
    void openActive(const TestWindow::Options& options);
    /// Makes a window of another process the active one as a pager would, once the manager has it.
    void makeActive(xcb_window_t window);
    /// Ends the manager as a crash does: the server itself gives the windows back. A manager that is asked to end may
    /// be killed on the way, and leave one of them unmapped.
    void crashManager();
    /// A line of the section "switcher" in the user's settings file; before the program starts.
    void writeSwitcherSetting(const std::string& line) const;
    /// Starts the program and waits until it lists `listed` windows (all that were opened, when not given).
    void startProgram(std::optional<std::size_t> listed = std::nullopt);
    /// The environment of the program: that of the desktop with what `programOptions` adds.
    [[nodiscard]] std::map<std::string, std::string> programEnvironment() const;

    struct Answer {
        /// Nothing when the program did not end in time.
        std::optional<int> status;
        std::string output;
    };
    /// Starts the program a second time with these arguments and waits for its end.
    [[nodiscard]] Answer ask(const std::vector<std::string>& arguments) const {
        return ask(arguments, programEnvironment());
    }
    [[nodiscard]] static Answer ask(const std::vector<std::string>& arguments,
                                    const std::map<std::string, std::string>& environment);
    /// The window with this title on the screen, whether or not a window manager runs.
    [[nodiscard]] std::optional<xcb_window_t> findWindow(const std::string& title) const;
    /// Waits until a window with this title is on the screen.
    [[nodiscard]] std::optional<xcb_window_t> waitForWindow(const std::string& title);

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
    /// Alt and Tab belong to the window manager: pressed, they make it switch by itself.
    void expectManagerSwitches();
    /// Nothing is left over: no panel, no key down, no grab.
    void expectQuiet();
    /// The same, and the program ends by itself when asked to, without a sanitizer's report.
    void expectCleanEnd();
};

/// A test on a desk. At its end nothing may be left over there, and the program must end well.
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
