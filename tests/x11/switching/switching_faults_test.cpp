#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <csignal>
#include <fstream>
#include <thread>
#include <utility>

#include "platform/x11/xcb_reply.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {
namespace {

/// A screen locker, as far as the keyboard goes.
class KeyboardLocker {
public:
    explicit KeyboardLocker(const std::string& display) : desktop_(display) {
        const XcbReply<xcb_grab_keyboard_reply_t> reply(
            xcb_grab_keyboard_reply(desktop_.connection(),
                                    xcb_grab_keyboard(desktop_.connection(), 0, desktop_.root(), XCB_CURRENT_TIME,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                    nullptr));
        EXPECT_TRUE(reply && reply->status == XCB_GRAB_STATUS_SUCCESS) << "the keyboard could not be locked";
    }
    void letGo() {
        xcb_ungrab_keyboard(desktop_.connection(), XCB_CURRENT_TIME);
        xcb_flush(desktop_.connection());
    }

private:
    TestDesktop desktop_;
};

/// Stops a program's main thread, and only that one, as a call that never returns would. The program is a child of this
/// process, and goes on when this object goes.
class HungMainThread {
public:
    explicit HungMainThread(pid_t program) : thread_(program) {
        isAllowed_ = ptrace(PTRACE_SEIZE, thread_, nullptr, nullptr) == 0;
        const Deadline deadline(patience);
        while (isAllowed_ && !stopsWhileItWaits()) {
            if (deadline.hasPassed()) {
                ADD_FAILURE() << "waited for the main thread to be idle";
                return;
            }
            EXPECT_EQ(ptrace(PTRACE_CONT, thread_, nullptr, nullptr), 0);
            std::this_thread::yield();
        }
    }
    ~HungMainThread() { goOn(); }
    HungMainThread(const HungMainThread&) = delete;
    HungMainThread& operator=(const HungMainThread&) = delete;

    /// Not every container lets a process do this.
    [[nodiscard]] bool isAllowed() const { return isAllowed_; }
    void goOn() {
        if (std::exchange(isAllowed_, false)) {
            EXPECT_EQ(ptrace(PTRACE_DETACH, thread_, nullptr, nullptr), 0);
        }
    }

private:
    /// Stopped anywhere else, it might hold a lock that other threads need, as the allocator's.
    [[nodiscard]] bool stopsWhileItWaits() const {
        EXPECT_EQ(ptrace(PTRACE_INTERRUPT, thread_, nullptr, nullptr), 0);
        EXPECT_EQ(waitpid(thread_, nullptr, __WALL), thread_) << "waited for the main thread to stop";
        long call = -1;
        std::ifstream("/proc/" + std::to_string(thread_) + "/syscall") >> call;
        // The last one goes on with a wait that was interrupted before.
        return call == SYS_ppoll || call == SYS_restart_syscall
#ifdef SYS_poll
               || call == SYS_poll
#endif
            ;
    }

    pid_t thread_;
    bool isAllowed_ = false;
};

class SwitchingFaultsTest : public ManagedDeskTest {
protected:
    void TearDown() override {
        if (!isServerGone) {
            expectCleanEnd();
        }
    }

    /// Holds Alt, and waits until the session has its keys: the panel shows a little earlier.
    void holdUntilKeysAreTaken() {
        hold();
        // From the list to the grid, which is wider, in two steps.
        input.chord({key::leftControl, key::l});
        input.chord({key::leftControl, key::l});
        expectPanelWidth(gridWidth);
    }

    bool isServerGone = false;
};

TEST_P(SwitchingFaultsTest, WithoutAWindowManagerItSaysWhatIsMissingAndStartsOnceThereIsOne) {
    openWindows(2);
    crashManager();
    program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server);
    EXPECT_TRUE(
        program->process().waitForOutput("No window manager with the extended window-manager hints is running"));
    EXPECT_THAT(program->process().output(), testing::Not(testing::HasSubstr("Services active")));
    manager = std::make_unique<WindowManagerProcess>(server, GetParam());
    EXPECT_TRUE(program->waitUntilActive());
}

TEST_P(SwitchingFaultsTest, TheProgramEndsWhenTheServerDoes) {
    openWindows(1);
    startProgram();
    windows.clear();
    server.kill();
    EXPECT_EQ(program->process().waitForExit(), 1);
    EXPECT_EQ(program->sanitizerReport(), "");
    // There is no desk left to be clean.
    program.reset();
    isServerGone = true;
}

TEST_P(SwitchingFaultsTest, ALockedKeyboardNeverOpensThePanelAndIsPublishedAsSecureInput) {
    openWindows(2);
    startProgram();
    KeyboardLocker locker(server.display());
    input.chord({key::leftAlt, key::tab});
    EXPECT_TRUE(program->process().waitForOutput("Secure input active: true"));
    EXPECT_FALSE(desktop.visiblePanel());
    locker.letGo();
    EXPECT_TRUE(program->process().waitForOutput("Secure input active: false"));
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(1));
}

TEST_P(SwitchingFaultsTest, SwitchingGoesOnAfterTheWindowManagerWasReplaced) {
    openWindows(2);
    startProgram();
    crashManager();
    ASSERT_TRUE(program->process().waitForOutput("Accessibility trust changed to notTrusted"));
    EXPECT_TRUE(program->process().waitForOutput("Services suspended"));
    EXPECT_EQ(program->sanitizerReport(), "");
    program->process().discardOutput();
    manager = std::make_unique<WindowManagerProcess>(server, GetParam());
    ASSERT_TRUE(program->waitUntilActive());
    use(window(2));
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(1));
}

TEST_P(SwitchingFaultsTest, AHungMainThreadWithThePanelOpenDoesNotKeepTheKeyboard) {
    openWindows(2);
    startProgram();
    holdUntilKeysAreTaken();
    HungMainThread hung(program->process().pid());
    if (!hung.isAllowed()) {
        letGo();
        GTEST_SKIP() << "stopping a thread is not allowed here";
    }
    // The first is for the panel; nobody reads it.
    input.tap(key::a);
    EXPECT_TRUE(desktop.waitForFreeKeyboard()) << "the panel still has the keyboard";
    letGo();
    static_cast<void>(windows.back()->takeInput());
    input.tap(key::b);
    EXPECT_TRUE(windows.back()->waitForKeyPress(key::b)) << "the window that had the focus before has it still";

    program->process().discardOutput();
    hung.goOn();
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(program->process().waitForOutput("Re-enabling event tap"));
    // Until then the manager answers the keys, and one that takes the keyboard late misses the release and keeps it.
    EXPECT_TRUE(program->process().waitForOutput("The shortcut is grabbed"));
    use(window(1));
    use(window(2));
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(1));
}

TEST_P(SwitchingFaultsTest, TriggersThatAHungMainThreadLeavesUnansweredOpenNothingLater) {
    openWindows(3);
    startProgram();
    HungMainThread hung(program->process().pid());
    if (!hung.isAllowed()) {
        GTEST_SKIP() << "stopping a thread is not allowed here";
    }
    for (int trigger = 1; trigger <= 2; ++trigger) {
        program->process().discardOutput();
        input.chord({key::leftAlt, key::tab});
        EXPECT_TRUE(program->process().waitForOutput("No answer to the trigger; the keyboard is given back"));
        EXPECT_TRUE(desktop.waitForFreeKeyboard());
    }
    hung.goOn();
    input.chord({key::leftAlt, key::tab});
    expectSwitchTo(window(2));
    EXPECT_FALSE(desktop.visiblePanel());
}

TEST_P(SwitchingFaultsTest, ALockerThatStartsWithThePanelOpenGetsTheKeyboard) {
    openWindows(2);
    startProgram();
    for (const auto& command : {std::vector<std::string>{"i3lock", "-n"}, {"xsecurelock"}}) {
        hold();
        program->process().discardOutput();
        auto locker = startClient(command);
        EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to make room for " << command.front();
        EXPECT_TRUE(desktop.waitUntil([&] { return !locker.isRunning() || !desktop.keyboardIsFree(); }));
        letGo();
        EXPECT_TRUE(locker.isRunning()) << command.front() << " gave up: " << locker.output();
        locker.signal(SIGTERM);
        EXPECT_TRUE(locker.waitForExit());
        EXPECT_TRUE(desktop.waitForFreeKeyboard());
        // Until then the manager answers the keys.
        EXPECT_TRUE(program->process().waitForOutput("The shortcut is grabbed"));
    }
}

TEST_P(SwitchingFaultsTest, ALockersWindowOnOneOfTwoMonitorsEndsASession) {
    run({"xrandr", "--setmonitor", "left", "640/169x800/211+0+0", "screen"});
    run({"xrandr", "--setmonitor", "right", "640/169x800/211+640+0", "none"});
    openWindows(2);
    startProgram();
    holdUntilKeysAreTaken();
    const TestWindow locker(server.display(),
                            {.x = 640, .y = 0, .width = 640, .height = 800, .overrideRedirect = true});
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(desktop.waitForFreeKeyboard());
    letGo();
}

TEST_P(SwitchingFaultsTest, TheServersScreenSaverEndsASession) {
    openWindows(2);
    startProgram();
    hold();
    xcb_force_screen_saver(desktop.connection(), XCB_SCREEN_SAVER_ACTIVE);
    xcb_flush(desktop.connection());
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(desktop.waitForFreeKeyboard());
    EXPECT_TRUE(program->process().waitForOutput("Re-enabling event tap (user-input transition)"));
    letGo();
    xcb_force_screen_saver(desktop.connection(), XCB_SCREEN_SAVER_RESET);
    xcb_flush(desktop.connection());
}

TEST_P(SwitchingFaultsTest, AScreenSaverOnTheBusGetsTheKeyboardEvenFromAHungProgram) {
    const PrivateBus bus(server);
    programOptions.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    openWindows(2);
    startProgram();
    holdUntilKeysAreTaken();
    HungMainThread hung(program->process().pid());
    if (!hung.isAllowed()) {
        letGo();
        GTEST_SKIP() << "stopping a thread is not allowed here";
    }
    // No key is pressed meanwhile, so that nothing else makes it give the keyboard back.
    run({"dbus-send", "--bus=" + bus.address(), "--type=signal", "/org/gnome/ScreenSaver",
         "org.gnome.ScreenSaver.ActiveChanged", "boolean:true"});
    EXPECT_TRUE(desktop.waitForFreeKeyboard());
    letGo();
    hung.goOn();
    EXPECT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    EXPECT_TRUE(program->process().waitForOutput("Re-enabling event tap"));
}

/// Xephyr crashes when a key is pressed that a program has grabbed at its keyboard.
TEST(XephyrTest, NothingIsTakenFromItsKeyboardAndTheProgramSaysWhy) {
    const PrivateXServer host;
    const PrivateXServer server = PrivateXServer::nestedIn(host);
    const WindowManagerProcess manager(server, "openbox");
    TestDesktop desktop(server.display());
    TestInput input(server.display());
    FerrowynProgram program(FERROWYN_PROGRAM, server);
    EXPECT_TRUE(program.process().waitForOutput("This X server is Xephyr, which crashes"));
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.windowTitled("Ferrowyn Setup").has_value(); }))
        << "waited for the guide that says what is missing; it said: " << program.process().output();
    input.chord({key::leftAlt, key::tab});
    EXPECT_TRUE(desktop.keyboardIsFree());
    EXPECT_EQ(xcb_connection_has_error(desktop.connection()), 0) << "the server is gone";
    EXPECT_THAT(program.process().output(), testing::Not(testing::HasSubstr("Services active")));
}

INSTANTIATE_TEST_SUITE_P(X11, SwitchingFaultsTest, testing::Values("openbox", "xfwm4"), managerName);

}  // namespace
}  // namespace ferrowyn::x11test
