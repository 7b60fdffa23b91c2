// The user's keyboard when the program is stopped or killed, which runs nothing of it any more.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>

#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

using Clock = std::chrono::steady_clock;

/// Where in a switch it happens.
enum class Moment { beforeTheModifier, beforeTheTrigger, withThePanelOpen };

struct Stop {
    const char* manager;
    Moment moment;
};

const char* nameOf(Moment moment) {
    switch (moment) {
        case Moment::beforeTheModifier:
            return "BeforeTheModifier";
        case Moment::beforeTheTrigger:
            return "BeforeTheTrigger";
        case Moment::withThePanelOpen:
            return "WithThePanelOpen";
    }
    return "";
}

void PrintTo(const Stop& stop, std::ostream* stream) {
    *stream << stop.manager << ' ' << nameOf(stop.moment);
}

std::string stopName(const testing::TestParamInfo<Stop>& instance) {
    return std::string(instance.param.manager) + nameOf(instance.param.moment);
}

std::vector<Stop> stopsUnder(std::initializer_list<const char*> managers) {
    std::vector<Stop> stops;
    for (const auto* const manager : managers) {
        for (const auto moment : {Moment::beforeTheModifier, Moment::beforeTheTrigger, Moment::withThePanelOpen}) {
            stops.push_back({manager, moment});
        }
    }
    return stops;
}

class StoppedProgramTest : public DeskTest<testing::TestWithParam<Stop>> {
protected:
    /// What the watch promises is 400 ms; this is what a loaded machine may make of it.
    static constexpr milliseconds bound{3000};

    StoppedProgramTest() : DeskTest(GetParam().manager) {}

    /// The fingers go through a switch, in the middle of which the program stops.
    void switchAndStop() {
        const auto moment = GetParam().moment;
        if (moment == Moment::beforeTheModifier) {
            program->process().signal(SIGSTOP);
        }
        input.press(key::leftAlt);
        if (moment == Moment::beforeTheTrigger) {
            program->process().signal(SIGSTOP);
        }
        stoppedAt = Clock::now();
        input.tap(key::tab);
        if (moment == Moment::withThePanelOpen) {
            ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel";
            program->process().signal(SIGSTOP);
            stoppedAt = Clock::now();
        }
    }
    /// Types until a window sees it.
    void expectUsableKeyboard() {
        input.release(key::leftAlt);
        bool isSeen = false;
        while (!isSeen && Clock::now() - stoppedAt < patience) {
            input.tap(key::q);
            for (const auto& window : windows) {
                isSeen = isSeen || window->waitForKeyPress(key::q, milliseconds{10});
            }
        }
        const auto took = std::chrono::duration_cast<milliseconds>(Clock::now() - stoppedAt);
        std::cout << "usable again after " << took.count() << " ms\n";
        EXPECT_TRUE(isSeen) << "no window gets a key";
        EXPECT_LT(took, bound);
        EXPECT_TRUE(desktop.waitForUntouchedKeyboard())
            << (desktop.anyKeyIsDown() ? "a key is stuck" : "a grab is left");
    }

    Clock::time_point stoppedAt;
};

TEST_P(StoppedProgramTest, AStoppedProgramGivesTheKeyboardBackAndSwitchesAgainOnceItGoesOn) {
    openWindows(2);
    startProgram();
    switchAndStop();
    expectUsableKeyboard();
    program->process().discardOutput();
    program->process().signal(SIGCONT);
    EXPECT_TRUE(program->process().waitForOutput("Re-enabling event tap"));
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(program->process().waitForOutput("The shortcut is grabbed"));
    use(window(1));
    use(window(2));
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(1));
}

TEST_P(StoppedProgramTest, AKilledProgramLeavesTheKeyboardUsable) {
    openWindows(2);
    startProgram();
    switchAndStop();
    program->process().signal(SIGKILL);
    stoppedAt = Clock::now();
    EXPECT_EQ(program->process().waitForExit(), 128 + SIGKILL);
    expectUsableKeyboard();
    // There is none left to end well.
    program.reset();
}

INSTANTIATE_TEST_SUITE_P(X11, StoppedProgramTest, testing::ValuesIn(stopsUnder({"openbox", "xfwm4"})), stopName);
// Where no keys are held back, only an open panel has the keyboard.
INSTANTIATE_TEST_SUITE_P(FurtherManagers, StoppedProgramTest, testing::Values(Stop{"mutter", Moment::withThePanelOpen}),
                         stopName);

class KeyboardGuardTest : public DeskTest<testing::Test> {
protected:
    KeyboardGuardTest() : DeskTest("openbox") {}

    [[nodiscard]] std::optional<pid_t> guard() const {
        return childNamed(program->process().pid(), "ferrowyn-keyboard-guard");
    }
};

TEST_F(KeyboardGuardTest, WithoutItsGuardTheProgramSwitchesButHoldsNoKeysBack) {
    openWindows(2);
    startProgram();
    ASSERT_TRUE(guard());
    kill(*guard(), SIGKILL);
    EXPECT_TRUE(program->process().waitForOutput("The keyboard's guard is gone"));
    use(window(2));
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(1));
    // The panel goes a moment before the keyboard is given back.
    ASSERT_TRUE(desktop.waitForUntouchedKeyboard());
    program->process().stop();
    input.chord({key::leftAlt, key::tab});
    input.tap(key::q);
    EXPECT_TRUE(windows.front()->waitForKeyPress(key::q)) << "nothing is there that could end a freeze";
    program->process().signal(SIGCONT);
}

TEST_F(KeyboardGuardTest, TheGuardEndsWithTheProgram) {
    openWindows(1);
    startProgram();
    const auto process = guard();
    ASSERT_TRUE(process);
    program->process().signal(SIGKILL);
    ASSERT_TRUE(program->process().waitForExit());
    // Whoever inherits it takes a moment to see that it has ended, so a dead process counts as ended.
    EXPECT_TRUE(desktop.waitUntil([&] {
        std::ifstream file("/proc/" + std::to_string(*process) + "/stat");
        std::string line;
        return !std::getline(file, line) || line.find(") Z ") != std::string::npos;
    }));
    program.reset();
}

}  // namespace
}  // namespace ferrowyn::x11test
