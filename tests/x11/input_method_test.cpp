#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <string>

#include "tests/x11/desk_test.h"
#include "tests/x11/harness/private_bus.h"

namespace ferrowyn::x11test {
namespace {

/// A desktop whose user types Chinese with fcitx5, on a bus of its own.
class InputMethodTest : public DeskTest<testing::Test> {
protected:
    InputMethodTest() : DeskTest("openbox") {
        programOptions.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
        server.home().write(".config/fcitx5/profile",
                            "[Groups/0]\nName=Default\nDefault Layout=us\nDefaultIM=pinyin\n\n"
                            "[Groups/0/Items/0]\nName=keyboard-us\nLayout=\n\n"
                            "[Groups/0/Items/1]\nName=pinyin\nLayout=\n\n"
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

    const PrivateBus bus{server};
    std::unique_ptr<ChildProcess> inputMethod;
};

TEST_F(InputMethodTest, TypesWhatItComposesAndLeavesTheOtherKeys) {
    openActive({.title = "你好"});
    openActive({.title = "nihao"});
    openWindows(3);
    startProgram();
    ASSERT_TRUE(waitUntilAsked());
    const auto before = desktop.shownTopLevels();
    // Off as it is for every new client, it leaves letters and the keys that move; Control and Space turn it on.
    holdAndPin();
    type({key::n, key::i, key::h, key::enter});
    expectSwitchTo(window(2));
    holdAndPin();
    input.chord({key::leftControl, key::space});
    input.tap(key::escape);
    expectQuiet();
    ASSERT_TRUE(inputMethod->waitForOutput("Loaded addon pinyin")) << "waited for the dictionary";

    holdAndPin();
    type({key::n, key::i, key::h, key::a, key::o});
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.shownTopLevels().size() == before.size() + 2; }))
        << "waited for the panel and the input method's window";
    input.tap(key::digit1);
    input.tap(key::enter);
    expectSwitchTo(window(1));
    expectQuiet();
    // While it composes, Escape is the input method's, and then the panel's.
    holdAndPin();
    type({key::n, key::i, key::escape});
    EXPECT_TRUE(desktop.visiblePanel());
    type({key::n, key::i, key::escape, key::escape});
    expectQuiet();
    // What is being composed goes with the panel.
    holdAndPin();
    type({key::n, key::i});
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.shownTopLevels().size() == before.size() + 2; }));
    input.click(1, 1);
    expectQuiet();
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.shownTopLevels() == before; }))
        << "waited for the input method's window to go";
    for (const auto& window : windows) {
        EXPECT_THAT(window->takeInput().keyPresses, testing::Not(testing::Contains(key::n))) << "typed text leaked";
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

}  // namespace
}  // namespace ferrowyn::x11test
