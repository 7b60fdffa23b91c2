#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include "platform/x11/x11_connection.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

using testing::HasSubstr;
using testing::Not;

class SwitchingHealthTest : public ManagedDeskTest {
protected:
    /// What the program says in a terminal when it is asked what is right and wrong here.
    std::string doctorsReport() {
        ChildProcess doctor({.command = {FERROWYN_PROGRAM, "--doctor"}, .environment = server.clientEnvironment()});
        EXPECT_TRUE(doctor.waitForExit().has_value());
        return doctor.output();
    }
    void pressTrigger(std::uint8_t modifier) {
        program->process().discardOutput();
        input.press(modifier);
        input.tap(key::tab);
        EXPECT_TRUE(program->process().waitForOutput("Another program holds the keyboard"));
        input.release(modifier);
    }
};

/// The window manager answers Super by itself, and so keeps the program from taking the keyboard.
class LostTriggerTest : public SwitchingHealthTest {
protected:
    void expectLostTriggersToBeNoticed() {
        openWindows(2);
        startProgram();
        pressTrigger(key::leftSuper);
        EXPECT_FALSE(program->process().waitForOutput("Another program answers the shortcut", milliseconds{1500}))
            << "once may be an accident";
        pressTrigger(key::leftSuper);
        EXPECT_TRUE(program->process().waitForOutput("Another program answers the shortcut"));
        const auto report = doctorsReport();
        EXPECT_THAT(report, HasSubstr("running, but another program answers the shortcut"));
        EXPECT_THAT(report, HasSubstr("answers Super by itself")) << "which it would find without the program, too";
    }
};

TEST_P(LostTriggerTest, ATriggerThatTheManagerAnswersIsNoticed) {
    writeSwitcherSetting("modifier=\"command\"");
    expectLostTriggersToBeNoticed();
}

INSTANTIATE_TEST_SUITE_P(FurtherManagers, LostTriggerTest, testing::Values("mutter"), managerName);

/// Another client has the modifier itself, as managers have that open an overview with it.
class ModifierHolderTest : public LostTriggerTest {
protected:
    void holdModifier() {
        const std::uint16_t mode = XCB_GRAB_MODE_ASYNC;
        xcb_grab_key(holder->get(), 0, holder->root(), XCB_MOD_MASK_ANY, key::leftSuper, mode, mode);
        static_cast<void>(holder->internAtoms({"ATOM"}));
    }
    std::unique_ptr<X11Connection> holder = X11Connection::open(server.display().c_str());
};

TEST_P(ModifierHolderTest, ATriggerThatAnotherClientAnswersIsNoticedUntilItComesAgain) {
    writeSwitcherSetting("modifier=\"command\"");
    holdModifier();
    expectLostTriggersToBeNoticed();
    holder.reset();
    program->process().discardOutput();
    input.press(key::leftSuper);
    input.tap(key::tab);
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.visiblePanel().has_value(); }));
    input.release(key::leftSuper);
    EXPECT_TRUE(program->process().waitForOutput("Switching works again"));
    expectSwitchTo(window(1));
}

TEST_P(ModifierHolderTest, AKeyboardThatIsHeldOnIsSecureInputAndNoLostTrigger) {
    openWindows(2);
    startProgram();
    const auto cookie =
        xcb_grab_keyboard(holder->get(), 0, holder->root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    free(xcb_grab_keyboard_reply(holder->get(), cookie, nullptr));
    pressTrigger(key::leftAlt);
    input.press(key::leftAlt);
    input.tap(key::tab);
    input.release(key::leftAlt);
    EXPECT_FALSE(program->process().waitForOutput("Another program answers the shortcut", milliseconds{1500}));
    EXPECT_TRUE(program->process().waitForOutput("Secure input active: true"));
    holder.reset();
    EXPECT_TRUE(program->process().waitForOutput("Secure input active: false"));
}

INSTANTIATE_TEST_SUITE_P(X11, ModifierHolderTest, testing::Values("openbox"), managerName);

/// What the doctor finds of managers that do all that they should, and with the program at work.
class HealthyManagerTest : public SwitchingHealthTest {};

TEST_P(HealthyManagerTest, TheDoctorFindsItSoAndLeavesTheWindowsAsTheyWere) {
    openWindows(3);
    startProgram();
    const auto active = desktop.activeWindow();
    const auto report = doctorsReport();
    EXPECT_THAT(report, HasSubstr("the window manager activates a window when it is asked to"));
    EXPECT_THAT(report, Not(HasSubstr("FAIL")));
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 3; }));
    EXPECT_TRUE(desktop.waitForActiveWindow(active));
    hold();
    letGo();
    expectSwitchTo(window(2));
}

INSTANTIATE_TEST_SUITE_P(X11, HealthyManagerTest, testing::Values("openbox", "xfwm4"), managerName);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, HealthyManagerTest,
                         testing::Values("icewm", "metacity", "i3", "kwin_x11", "mutter"), managerName);

/// A manager that marks the windows that a pager wants active as urgent, and does no more.
class IgnoredActivationTest : public SwitchingHealthTest {};

TEST_P(IgnoredActivationTest, WindowsThatDoNotComeToTheFrontAreNoticed) {
    for (const char* const application : {"Mail", "Browser", "Editor"}) {
        openActive({.title = application, .className = application});
    }
    startProgram();
    const auto switchBy = [this](int times, const char* outcome) {
        program->process().discardOutput();
        hold(times);
        letGo();
        EXPECT_TRUE(program->process().waitForOutput(outcome)) << outcome;
    };
    const auto isNoticed = [this] {
        return program->process().output().find("The chosen windows do not come to the front") != std::string::npos;
    };
    switchBy(1, "Could not confirm activation");
    EXPECT_FALSE(isNoticed());
    // To the window that is still the active one: that proves nothing.
    switchBy(3, "active after 1 check");
    EXPECT_FALSE(isNoticed());
    switchBy(1, "Could not confirm activation");
    EXPECT_FALSE(isNoticed()) << "the same application";
    switchBy(2, "The chosen windows do not come to the front");
    EXPECT_THAT(doctorsReport(), HasSubstr("the chosen windows do not come to the front"));
}

INSTANTIATE_TEST_SUITE_P(FurtherManagers, IgnoredActivationTest, testing::Values("dwm"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
