#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <string>

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

/// A desktop with a private bus, whose user types Korean with fcitx5.
class InputMethodTest : public DeskTest<testing::Test> {
protected:
    InputMethodTest() : DeskTest("openbox") {
        programOptions.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        server.home().write(".config/fcitx5/profile",
                            "[Groups/0]\nName=Default\nDefault Layout=us\nDefaultIM=hangul\n\n"
                            "[Groups/0/Items/0]\nName=keyboard-us\nLayout=\n\n"
                            "[Groups/0/Items/1]\nName=hangul\nLayout=\n\n"
                            "[GroupOrder]\n0=Default\n");
        startInputMethod();
    }

    void startInputMethod() {
        auto environment = server.clientEnvironment();
        environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        inputMethod = std::make_unique<ChildProcess>(
            ChildProcess::Options{.command = {"fcitx5", "--disable=wayland"}, .environment = environment});
    }
    /// Opens a session that stays when Alt is let go.
    void holdAndPin() {
        hold();
        input.tap(key::down);
        letGo();
    }
    [[nodiscard]] bool waitUntilAsked() {
        return program->process().waitForOutput("The input method fcitx5 is asked about typed keys");
    }

    PrivateBus bus{server};
    std::unique_ptr<ChildProcess> inputMethod;
};

TEST_F(InputMethodTest, TypesWhatItComposesAndLeavesTheOtherKeys) {
    openActive({.title = "한글"});
    openActive({.title = "gksrmf"});
    openWindows(3);
    startProgram();
    ASSERT_TRUE(waitUntilAsked());
    const auto before = desktop.shownTopLevels();
    const auto isComposing = [&] { return desktop.shownTopLevels().size() == before.size() + 2; };
    // Off as it is for every new client, it leaves letters and the keys that move; Control and Space turn it on.
    holdAndPin();
    type({key::g, key::k, key::s, key::enter});
    expectSwitchTo(window(2));
    holdAndPin();
    input.chord({key::leftControl, key::space});
    input.tap(key::escape);
    expectQuiet();
    ASSERT_TRUE(inputMethod->waitForOutput("Loaded addon hangul")) << "waited for the language";

    // Backspace takes one letter from the syllable; Return ends it and is then the panel's.
    holdAndPin();
    type({key::g, key::k, key::s, key::r, key::m, key::f, key::r, key::backspace});
    EXPECT_TRUE(desktop.waitUntil(isComposing)) << "waited for the panel and the input method's window";
    input.tap(key::enter);
    expectSwitchTo(window(1));
    expectQuiet();
    // What is being composed goes with the panel.
    holdAndPin();
    type({key::g, key::k});
    EXPECT_TRUE(desktop.waitUntil(isComposing));
    input.click(1, 1);
    expectQuiet();
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.shownTopLevels() == before; }))
        << "waited for the input method's window to go";
    for (const auto& window : windows) {
        EXPECT_THAT(window->takeInput().keyPresses, testing::Not(testing::Contains(key::k))) << "typed text leaked";
    }
}

TEST_F(InputMethodTest, OneThatHangsOrEndsCostsNoKey) {
    openActive({.title = "nihao"});
    openWindows(3);
    startProgram();
    ASSERT_TRUE(waitUntilAsked());
    inputMethod->signal(SIGSTOP);
    holdAndPin();
    type({key::n, key::i, key::h, key::a});
    input.tap(key::enter);
    expectSwitchTo(window(1));
    inputMethod->signal(SIGCONT);
    use(window(4));
    holdAndPin();
    inputMethod->signal(SIGKILL);
    type({key::n, key::i, key::h, key::a});
    input.tap(key::enter);
    expectSwitchTo(window(1));
    // And it is asked again when it comes back.
    program->process().discardOutput();
    startInputMethod();
    EXPECT_TRUE(waitUntilAsked());
}

TEST_F(InputMethodTest, ItIsAskedAgainOnABusThatWasStartedAgain) {
    openWindows(2);
    startProgram();
    ASSERT_TRUE(waitUntilAsked());
    inputMethod.reset();
    bus.restart();
    program->process().discardOutput();
    startInputMethod();
    // The end of a session is when it looks for the bus.
    holdAndPin();
    input.tap(key::escape);
    expectQuiet();
    EXPECT_TRUE(waitUntilAsked());
}

}  // namespace
}  // namespace ferrowyn::x11test
