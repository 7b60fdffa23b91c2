// The program where the session's bus is missing or ends.

#include "tests/x11/desk_test.h"
#include "tests/x11/harness/private_bus.h"
#include "tests/x11/harness/tray_host_process.h"
#include "tests/x11/program_windows.h"

namespace ferrowyn::x11test {
namespace {

constexpr const char* busVariable = "DBUS_SESSION_BUS_ADDRESS";

class SessionBusFaultsTest : public DeskTest<testing::Test> {
protected:
    SessionBusFaultsTest() : DeskTest("openbox") {}

    void useBusAt(const std::string& address) { programOptions.environment[busVariable] = address; }

    /// Everything that does not need a bus.
    void expectAllToWork() {
        own.expectSwitching();
        const auto settings = own.ask("--settings");
        EXPECT_EQ(settings.status, 0) << settings.output;
        EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
        input.tap(key::escape);
        EXPECT_TRUE(own.waitUntilGone("Ferrowyn Settings"));
        const auto show = own.ask("--show");
        EXPECT_EQ(show.status, 0) << show.output;
        EXPECT_TRUE(desktop.waitUntil([this] { return desktop.visiblePanel() && !desktop.keyboardIsFree(); }));
        input.tap(key::escape);
        EXPECT_TRUE(desktop.waitForPanel(false));
    }
    void expectToQuitWhenAsked() {
        expectQuiet();
        const auto quit = own.ask("--quit");
        EXPECT_EQ(quit.status, 0) << quit.output;
        EXPECT_EQ(program->process().waitForExit(), 0) << program->process().output();
    }

    ProgramWindows own{*this};
};

TEST_F(SessionBusFaultsTest, WithoutABusAtItsAddressAllElseWorks) {
    useBusAt("unix:path=" + server.home().path() + "/no-such-bus");
    openWindows(2);
    startProgram();
    expectAllToWork();
    expectToQuitWhenAsked();
}

TEST_F(SessionBusFaultsTest, WithAnAddressThatIsNoneAllElseWorks) {
    useBusAt("nonsense");
    openWindows(2);
    startProgram();
    expectAllToWork();
    expectToQuitWhenAsked();
}

TEST_F(SessionBusFaultsTest, FromWhereThereIsNeitherDisplayNorBusItIsSaidThatItCannotBeReached) {
    useBusAt("unix:path=" + server.home().path() + "/no-such-bus");
    programOptions.environment["DISPLAY"] = "";
    const auto answer = own.ask("--show");
    EXPECT_EQ(answer.status, 1);
    EXPECT_THAT(answer.output, testing::HasSubstr("DISPLAY is not set"));
}

TEST_F(SessionBusFaultsTest, TheBusEndsWhileItRuns) {
    PrivateBus bus(server);
    useBusAt(bus.address());
    openWindows(2);
    startProgram();
    own.expectSwitching();
    bus.kill();
    expectAllToWork();
    expectToQuitWhenAsked();
}

TEST_F(SessionBusFaultsTest, TheBusEndsWhileTheMenuOfItsTrayIsOpen) {
    PrivateBus bus(server);
    useBusAt(bus.address());
    const TrayHostProcess tray(server, bus, "trayer");
    openWindows(2);
    startProgram();
    ASSERT_TRUE(own.openMenu());
    bus.kill();
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    EXPECT_TRUE(own.choose("Settings…")) << "the icon is where it was";
    EXPECT_TRUE(own.waitForActive("Ferrowyn Settings"));
    own.expectSwitching();
}

}  // namespace
}  // namespace ferrowyn::x11test
