// Keys beside the trigger: those typed right after it, before a busy machine lets the tap see it, belong to the panel;
// those held since before it neither type nor pin.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/x11/harness/test_input.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

/// A window manager, and whether it lets keys be held back.
struct Holding {
    const char* manager;
    bool holdsKeysBack;
};

void PrintTo(const Holding& holding, std::ostream* stream) {
    *stream << holding.manager;
}

std::string holdingName(const testing::TestParamInfo<Holding>& instance) {
    return instance.param.manager;
}

/// How many fast switches are tried; `FERROWYN_FAST_SWITCHES` asks for more.
int fastSwitches() {
    const char* const count = std::getenv("FERROWYN_FAST_SWITCHES");
    return count == nullptr ? 60 : std::atoi(count);
}

/// Programs that keep both processors busy, as many as `FERROWYN_BUSY_PROGRAMS` says.
std::vector<std::unique_ptr<ChildProcess>> busyPrograms() {
    const char* const count = std::getenv("FERROWYN_BUSY_PROGRAMS");
    std::vector<std::unique_ptr<ChildProcess>> programs;
    for (int number = 0; count != nullptr && number < std::atoi(count); ++number) {
        programs.push_back(std::make_unique<ChildProcess>(ChildProcess::Options{
            .command = {"sh", "-c", "while :; do :; done"}, .environment = {}, .inheritedDescriptor = {}}));
    }
    return programs;
}

/// A client that has the server to itself again and again for up to 20 ms, as window managers and compositors do.
class BusyClient {
public:
    explicit BusyClient(const std::string& display)
        : desktop_(display), thread_([this](const std::stop_token& stop) { run(stop); }) {}

private:
    void run(const std::stop_token& stop) {
        std::mt19937 random(7);
        std::uniform_int_distribution length(1, 20);
        while (!stop.stop_requested()) {
            xcb_grab_server(desktop_.connection());
            xcb_flush(desktop_.connection());
            std::this_thread::sleep_for(milliseconds{length(random)});
            xcb_ungrab_server(desktop_.connection());
            xcb_flush(desktop_.connection());
            std::this_thread::sleep_for(milliseconds{length(random)});
        }
    }

    TestDesktop desktop_;
    std::jthread thread_;
};

class HeldBackKeysTest : public DeskTest<testing::TestWithParam<Holding>> {
protected:
    HeldBackKeysTest() : DeskTest(GetParam().manager) {}

    /// Presses and releases keys while the server serves no other client, and for this long afterwards: what a busy
    /// server and a late tap amount to.
    void typeUnheard(std::initializer_list<std::uint8_t> keyCodes, milliseconds silence) {
        auto* const connection = desktop.connection();
        xcb_grab_server(connection);
        for (const auto keyCode : keyCodes) {
            for (const auto type : {std::uint8_t{XCB_KEY_PRESS}, std::uint8_t{XCB_KEY_RELEASE}}) {
                xcb_test_fake_input(connection, type, keyCode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
            }
        }
        xcb_flush(connection);
        std::this_thread::sleep_for(silence);
        xcb_ungrab_server(connection);
        xcb_flush(connection);
    }
    /// Fingers do not wait until a client lets others at the server.
    void typeWhateverTheServerDoes() {
        xcb_test_grab_control(desktop.connection(), 1);
        xcb_flush(desktop.connection());
    }
    void send(std::uint8_t type, std::uint8_t keyCode) {
        xcb_test_fake_input(desktop.connection(), type, keyCode, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
        xcb_flush(desktop.connection());
    }
    /// Whether any window has seen a key of these since the last call.
    [[nodiscard]] bool hasLeaked(std::initializer_list<std::uint8_t> keyCodes) {
        bool hasLeaked = false;
        for (const auto& window : windows) {
            for (const auto pressed : window->takeInput().keyPresses) {
                hasLeaked = hasLeaked || std::find(keyCodes.begin(), keyCodes.end(), pressed) != keyCodes.end();
            }
        }
        return hasLeaked;
    }
    void pause() {
        // How fast fingers are, not a wait for something.
        std::this_thread::sleep_for(
            std::chrono::duration<double, std::milli>(std::uniform_real_distribution(8.0, 40.0)(random_)));
    }

private:
    std::mt19937 random_{20261122};
};

TEST_P(HeldBackKeysTest, ALetterRightAfterTheTriggerReachesNoWindowHoweverLateTheTapIs) {
    openWindows(3);
    startProgram();
    for (const auto silence : {milliseconds{20}, milliseconds{60}, milliseconds{120}}) {
        int leaks = 0;
        constexpr int rounds = 20;
        for (int round = 0; round < rounds; ++round) {
            input.press(key::leftAlt);
            pause();
            typeUnheard({key::tab, key::q}, silence);
            ASSERT_TRUE(desktop.waitForPanel(true)) << "round " << round;
            input.tap(key::escape);
            input.release(key::leftAlt);
            ASSERT_TRUE(desktop.waitForPanel(false)) << "round " << round;
            leaks += hasLeaked({key::q, key::tab}) ? 1 : 0;
        }
        std::cout << GetParam().manager << ": server silent for " << silence.count() << " ms: " << leaks << " of "
                  << rounds << " leaked\n";
        if (GetParam().holdsKeysBack) {
            EXPECT_EQ(leaks, 0) << silence.count() << " ms";
        }
    }
}

TEST_P(HeldBackKeysTest, KeysOfARealKeyboardReachThePanelAndNothingElse) {
    openActive({.title = "Quarterly figures"});
    openWindows(2);
    startProgram();
    TapPhysicalKeyboard keyboard(server.display());
    ASSERT_TRUE(keyboard.isThere());
    // The letter, which only the oldest window has, filters; it is typed before the tap can know of the session.
    keyboard.press(key::leftAlt);
    keyboard.tapUnheard({key::tab, key::q}, milliseconds{60});
    ASSERT_TRUE(desktop.waitForPanel(true));
    if (GetParam().holdsKeysBack) {
        keyboard.tap(key::enter);
        expectSwitchTo(window(1));
        EXPECT_FALSE(hasLeaked({key::q, key::tab, key::enter}));
    } else {
        keyboard.tap(key::escape);
    }
    keyboard.release(key::leftAlt);
    EXPECT_TRUE(desktop.waitForPanel(false));
    // Let go of before the tap can know, too.
    static_cast<void>(hasLeaked({}));
    const auto before = desktop.activeWindow();
    keyboard.press(key::leftAlt);
    keyboard.tapUnheard({key::tab, key::leftAlt}, milliseconds{60});
    keyboard.release(key::leftAlt);
    EXPECT_TRUE(desktop.waitUntil([&] {
        const auto active = desktop.activeWindow();
        return active != before && active != XCB_WINDOW_NONE;
    }));
    EXPECT_TRUE(desktop.waitForPanel(false));
    EXPECT_FALSE(hasLeaked({key::tab}));
}

/// Under managers that let keys be held back: with another one, the first key that goes to a window makes it refuse the
/// switches that follow.
class FastHeldBackKeysTest : public HeldBackKeysTest {};

TEST_P(FastHeldBackKeysTest, FastSwitchesLoseNoKeyToAWindow) {
    openWindows(3);
    startProgram();
    const auto load = busyPrograms();
    const BusyClient client(server.display());
    typeWhateverTheServerDoes();
    int leaks = 0;
    int wrong = 0;
    for (int round = 0; round < fastSwitches(); ++round) {
        // In a session the digit is the panel's: it chooses the second window, as letting go would.
        const auto expected = window(round % 2 == 0 ? 2 : 3);
        send(XCB_KEY_PRESS, key::leftAlt);
        pause();
        send(XCB_KEY_PRESS, key::tab);
        pause();
        send(XCB_KEY_RELEASE, key::tab);
        pause();
        send(XCB_KEY_PRESS, key::digit2);
        send(XCB_KEY_RELEASE, key::digit2);
        pause();
        send(XCB_KEY_RELEASE, key::leftAlt);
        wrong += desktop.waitForActiveWindow(expected, milliseconds{3000}) ? 0 : 1;
        ASSERT_TRUE(desktop.waitForPanel(false)) << "round " << round;
        leaks += hasLeaked({key::digit2, key::tab}) ? 1 : 0;
        if (desktop.activeWindow() != expected) {
            use(expected);
        }
    }
    EXPECT_NE(program->process().output().find("keys behind it are held back"), std::string::npos);
    std::cout << GetParam().manager << ": of " << fastSwitches() << " fast switches " << leaks << " leaked a key and "
              << wrong << " went wrong\n";
    EXPECT_EQ(leaks, 0);
    EXPECT_EQ(wrong, 0);
}

const auto usualHoldings = testing::Values(Holding{"openbox", true}, Holding{"xfwm4", true});
const auto furtherHoldings =
    testing::Values(Holding{"icewm", true}, Holding{"metacity", true}, Holding{"i3", true}, Holding{"kwin_x11", true});

INSTANTIATE_TEST_SUITE_P(X11, HeldBackKeysTest, usualHoldings, holdingName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, HeldBackKeysTest, furtherHoldings, holdingName);
INSTANTIATE_TEST_SUITE_P(FurtherManagersThatHoldNothing, HeldBackKeysTest, testing::Values(Holding{"mutter", false}),
                         holdingName);
INSTANTIATE_TEST_SUITE_P(X11, FastHeldBackKeysTest, usualHoldings, holdingName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, FastHeldBackKeysTest, furtherHoldings, holdingName);

/// A key that the user holds in an application, as one walks in a game, while the switcher is used.
class HeldKeysTest : public ManagedDeskTest {
protected:
    /// Time for a dozen repeats.
    static constexpr milliseconds manyRepeats{400};

    void SetUp() override {
        run({"xset", "r", "rate", "200", "30"});
        openActive({.title = "Walnut"});
        openActive({.title = "Pear"});
        openActive({.title = "Game"});
        startProgram();
    }

    /// Holds W in the active window until it repeats there.
    void holdWalkingKey() {
        input.press(key::w);
        for (int repeat = 0; repeat < 3; ++repeat) {
            ASSERT_TRUE(windows.back()->waitForKeyPress(key::w)) << "waited for W to repeat";
        }
    }
    /// How long fingers stay where they are, not a wait for something: nothing is to happen meanwhile.
    void stayFor(milliseconds duration) {
        (void)desktop.waitUntil([] { return false; }, duration);
    }
    void expectNoWalkingKey(std::size_t ordinal) {
        stayFor(manyRepeats);
        EXPECT_THAT(windows.at(ordinal - 1)->takeInput().keyPresses, testing::Not(testing::Contains(key::w)))
            << "W typed into window " << ordinal;
    }
};

TEST_P(HeldKeysTest, AKeyHeldSinceBeforeTheTriggerNeitherTypesNorPins) {
    holdWalkingKey();
    hold();
    stayFor(manyRepeats);
    letGo();
    expectSwitchTo(window(2));
    expectNoWalkingKey(2);
    input.release(key::w);
    expectQuiet();
}

TEST_P(HeldKeysTest, AKeyHeldForAMomentOnlyDoesNotBeginToRepeatAfterTheSwitch) {
    input.press(key::w);
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(2));
    expectNoWalkingKey(2);
    input.release(key::w);
    expectQuiet();
}

TEST_P(HeldKeysTest, AHeldKeyTypesOnceItWasReleasedAndPressedAgain) {
    holdWalkingKey();
    hold();
    stayFor(manyRepeats);
    input.release(key::w);
    type({key::w, key::a});
    // Typing pins: letting go does not switch.
    letGo();
    input.tap(key::enter);
    expectSwitchTo(window(1));
    expectQuiet();
}

INSTANTIATE_TEST_SUITE_P(X11, HeldKeysTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, HeldKeysTest, testing::Values("mutter"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
