#include "main/doctor_display.h"

#include <algorithm>
#include <memory>
#include <sstream>

#include "platform/log.h"
#include "platform/x11/keyboard/x11_keyboard_reader.h"
#include "platform/x11/keyboard/x11_tap_keyboard.h"
#include "platform/x11/x11_connection.h"
#include "tests/platform/recorded_log.h"
#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/ferrowyn_program.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;
using Verdict = DoctorFinding::Verdict;

/// Another program that takes the trigger keys where this one needs them.
class RivalSwitcher {
public:
    explicit RivalSwitcher(const std::string& display) : connection_(X11Connection::open(display.c_str())) {
        reader_ = X11KeyboardReader::create(*connection_);
        keyboard_ = X11TapKeyboard::create(*connection_, SwitcherModifier::option, log_);
        keyboard_->applyGrabs(true, false);
    }
    ~RivalSwitcher() {
        keyboard_->applyGrabs(false, false);
        // An answer says that the server has come this far.
        static_cast<void>(connection_->internAtoms({"ATOM"}));
    }
    RivalSwitcher(const RivalSwitcher&) = delete;
    RivalSwitcher& operator=(const RivalSwitcher&) = delete;

private:
    RecordedLog log_;
    std::unique_ptr<X11Connection> connection_;
    std::optional<X11KeyboardReader> reader_;
    std::unique_ptr<X11TapKeyboard> keyboard_;
};

class DoctorDisplayTest : public testing::Test {
protected:
    [[nodiscard]] DoctorDisplay display(SwitcherModifier trigger = SwitcherModifier::option) const {
        return {*connection, server.display(), trigger};
    }
    /// Owns the selection for as long as the other connection lives.
    void own(const std::string& selection) const {
        const auto window = xcb_generate_id(other->get());
        xcb_create_window(other->get(), XCB_COPY_FROM_PARENT, window, other->root(), -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(other->get(), window, other->internAtoms({selection}).front(), XCB_CURRENT_TIME);
        // An answer says that the server has come this far.
        static_cast<void>(other->internAtoms({selection}));
    }

    x11test::PrivateXServer server;
    std::unique_ptr<X11Connection> connection = X11Connection::open(server.display().c_str());
    std::unique_ptr<X11Connection> other = X11Connection::open(server.display().c_str());
};

TEST_F(DoctorDisplayTest, NamesTheServerAndItsExtension) {
    EXPECT_EQ(display().server().verdict, Verdict::good);
    EXPECT_THAT(display().server().text, AllOf(StartsWith(server.display() + ","), HasSubstr("1280 x 800")));
    EXPECT_EQ(display().inputExtension().verdict, Verdict::good);
    EXPECT_THAT(display().inputExtension().text, MatchesRegex("2\\.[2-9]"));
}

TEST(DoctorXephyrTest, SaysThatTheShortcutCannotBeTakenThere) {
    const x11test::PrivateXServer host;
    const x11test::PrivateXServer server = x11test::PrivateXServer::nestedIn(host);
    const auto connection = X11Connection::open(server.display().c_str());
    const DoctorDisplay display(*connection, server.display(), SwitcherModifier::option);
    EXPECT_EQ(display.inputExtension().verdict, Verdict::bad);
    EXPECT_THAT(display.inputExtension().text, HasSubstr("Xephyr"));
    EXPECT_EQ(display.triggerKeys().verdict, Verdict::bad);
    EXPECT_THAT(display.triggerKeys().text, HasSubstr("cannot be taken"));
}

TEST(DoctorServerVersionTest, SaysTheVersionAsTheServerCallsItself) {
    EXPECT_EQ(serverVersion("The X.Org Foundation", 12101007), "21.1.7");
    EXPECT_EQ(serverVersion("The X.Org Foundation", 12302000), "23.2.0");
    EXPECT_EQ(serverVersion("The X.Org Foundation", 12013000), "1.20.13");
    EXPECT_EQ(serverVersion("The X.Org Foundation", 11906001), "1.19.6.1");
    EXPECT_EQ(serverVersion("The XFree86 Project, Inc", 40300000), "40300000") << "each maker counts in its own way";
}

TEST_F(DoctorDisplayTest, SaysTheServersVersionAndNotItsReleaseNumber) {
    const auto release = xcb_get_setup(connection->get())->release_number;
    EXPECT_THAT(display().server().text, Not(HasSubstr(std::to_string(release))));
    EXPECT_THAT(display().server().text, MatchesRegex(".*The X\\.Org Foundation [0-9]+\\.[0-9]+\\.[0-9]+.*"));
}

TEST_F(DoctorDisplayTest, WithoutAWindowManagerSwitchingCannotWork) {
    EXPECT_EQ(display().windowManager(),
              (DoctorFinding{Verdict::bad, "window manager", "none with the extended window-manager hints is running",
                             "Start one; Ferrowyn then goes on by itself."}));
}

TEST_F(DoctorDisplayTest, AManagerThatIsGoneIsNoManager) {
    {
        const x11test::WindowManagerProcess manager(server, "openbox");
        EXPECT_EQ(display().windowManager().verdict, Verdict::good);
    }
    // Its claim may have stayed on the root window; the window that it names has not.
    x11test::TestDesktop desktop(server.display());
    EXPECT_TRUE(desktop.waitUntil([&] { return display().windowManager().verdict == Verdict::bad; }));
}

TEST_F(DoctorDisplayTest, NamesTheWindowManagerAndWhatItHolds) {
    const x11test::WindowManagerProcess manager(server, "openbox");
    EXPECT_EQ(display().windowManager(),
              (DoctorFinding{Verdict::good, "window manager", "Openbox, with the hints that are needed", ""}));
    EXPECT_EQ(display().triggerKeys(),
              (DoctorFinding{Verdict::good, "trigger keys",
                             "Alt+Tab is free; the window manager has it too, but Ferrowyn sees it first", ""}));
}

TEST_F(DoctorDisplayTest, AManagerThatCannotActivateIsNotEnough) {
    const auto window = xcb_generate_id(other->get());
    xcb_create_window(other->get(), XCB_COPY_FROM_PARENT, window, other->root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const auto atoms = other->internAtoms({"_NET_SUPPORTING_WM_CHECK", "_NET_SUPPORTED", "_NET_CLIENT_LIST"});
    for (const auto holder : {window, other->root()}) {
        xcb_change_property(other->get(), XCB_PROP_MODE_REPLACE, holder, atoms[0], XCB_ATOM_WINDOW, 32, 1, &window);
    }
    xcb_change_property(other->get(), XCB_PROP_MODE_REPLACE, other->root(), atoms[1], XCB_ATOM_ATOM, 32, 1, &atoms[2]);
    static_cast<void>(other->internAtoms({"_NET_SUPPORTED"}));
    EXPECT_EQ(display().windowManager().verdict, Verdict::bad);
    EXPECT_EQ(display().windowManager().text, "a window manager without a name lacks _NET_ACTIVE_WINDOW");
}

TEST_F(DoctorDisplayTest, TriesTheKeysOfTheChosenModifier) {
    EXPECT_EQ(display().triggerKeys(), (DoctorFinding{Verdict::good, "trigger keys", "Alt+Tab is free", ""}));
    EXPECT_EQ(display(SwitcherModifier::command).triggerKeys().text, "Super+Tab is free");
    EXPECT_EQ(display(SwitcherModifier::control).triggerKeys().text, "Ctrl+Tab is free");
}

TEST_F(DoctorDisplayTest, AModifierThatAnotherClientHasToItselfIsInTheWay) {
    constexpr std::uint16_t mode = XCB_GRAB_MODE_ASYNC;
    xcb_grab_key(other->get(), 0, other->root(), 0, x11test::key::leftSuper, mode, mode);
    static_cast<void>(other->internAtoms({"ATOM"}));
    EXPECT_EQ(display(SwitcherModifier::command).triggerKeys().verdict, Verdict::bad);
    EXPECT_THAT(display(SwitcherModifier::command).triggerKeys().text, HasSubstr("answers Super by itself"));
    EXPECT_EQ(display().triggerKeys().verdict, Verdict::good);
    xcb_ungrab_key(other->get(), x11test::key::leftSuper, other->root(), 0);
    static_cast<void>(other->internAtoms({"ATOM"}));
    EXPECT_EQ(display(SwitcherModifier::command).triggerKeys().verdict, Verdict::good);
}

TEST_F(DoctorDisplayTest, TriesWhetherTheManagerActivatesWindowsAndLeavesTheActiveOneActive) {
    const x11test::WindowManagerProcess manager(server, "openbox");
    const x11test::TestWindow first(server.display(), {.title = "First"});
    const x11test::TestWindow second(server.display(), {.title = "Second"});
    x11test::TestDesktop desktop(server.display());
    ASSERT_TRUE(desktop.waitForActiveWindow(second.id()));
    EXPECT_EQ(display().activation(), (DoctorFinding{Verdict::good, "activation",
                                                     "the window manager activates a window when it is asked to", ""}));
    EXPECT_EQ(desktop.activeWindow(), second.id());
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == 2; }));
}

TEST_F(DoctorDisplayTest, AnotherSwitcherThatHoldsTheKeysIsInTheWay) {
    {
        const RivalSwitcher rival(server.display());
        EXPECT_EQ(display().triggerKeys().verdict, Verdict::bad);
        EXPECT_EQ(display().triggerKeys().text, "another program holds Alt+Tab where Ferrowyn needs it");
        EXPECT_EQ(display(SwitcherModifier::control).triggerKeys().verdict, Verdict::good);
    }
    EXPECT_EQ(display().triggerKeys().verdict, Verdict::good);
}

TEST_F(DoctorDisplayTest, LooksAtTheKeysWithoutKeepingThem) {
    static_cast<void>(display().triggerKeys());
    static_cast<void>(display().secureInput());
    const RivalSwitcher late(server.display());
    EXPECT_EQ(display().triggerKeys().verdict, Verdict::bad) << "the late one could take them";
    EXPECT_TRUE(x11test::TestDesktop(server.display()).keyboardIsFree());
}

TEST_F(DoctorDisplayTest, SeesThatSomebodyHoldsTheKeyboard) {
    EXPECT_EQ(display().secureInput().verdict, Verdict::good);
    const auto cookie =
        xcb_grab_keyboard(other->get(), 0, other->root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    free(xcb_grab_keyboard_reply(other->get(), cookie, nullptr));
    EXPECT_EQ(display().secureInput().verdict, Verdict::notice);
    EXPECT_EQ(display().secureInput().text, "another program holds the keyboard for itself now");
}

TEST_F(DoctorDisplayTest, SeesCompositorTrayAndProgramByTheirSelections) {
    EXPECT_EQ(display().compositor().verdict, Verdict::notice);
    EXPECT_FALSE(display().hasEmbeddingTray());
    own("_NET_WM_CM_S0");
    own("_NET_SYSTEM_TRAY_S0");
    EXPECT_EQ(display().compositor(), (DoctorFinding{Verdict::good, "compositor", "running", ""}));
    EXPECT_TRUE(display().hasEmbeddingTray());
    EXPECT_FALSE(display().isProgramRunning());
}

/// The program itself, asked for its report.
class DoctorProgramTest : public DoctorDisplayTest {
protected:
    struct Result {
        int status;
        std::string output;
    };
    [[nodiscard]] Result runDoctor() const {
        x11test::ChildProcess program(
            {.command = {FERROWYN_PROGRAM, "--doctor"}, .environment = server.clientEnvironment()});
        const int status = program.waitForExit().value_or(-1);
        return {status, program.output()};
    }
};

TEST_F(DoctorProgramTest, FailsWithoutAWindowManagerAndSaysWhatToDo) {
    const auto result = runDoctor();
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, StartsWith("Switching windows cannot work here yet."));
    EXPECT_THAT(result.output, HasSubstr("[FAIL] window manager"));
    EXPECT_THAT(result.output, HasSubstr("-> Start one"));
}

TEST_F(DoctorProgramTest, SucceedsWithOneAndNamesNoWindow) {
    const x11test::WindowManagerProcess manager(server, "openbox");
    const x11test::TestWindow window(server.display(), {.title = "Secret plans", .className = "SecretApp"});
    x11test::TestDesktop desktop(server.display());
    ASSERT_TRUE(desktop.waitForActiveWindow(window.id()));
    const auto result = runDoctor();
    EXPECT_EQ(result.status, 0) << result.output;
    for (const char* subject : {"display", "window manager", "activation", "XInput", "trigger keys", "secure input",
                                "compositor", "Ferrowyn", "tray", "autostart", "settings", "versions"}) {
        EXPECT_THAT(result.output, HasSubstr(std::string("] ") + subject)) << subject;
    }
    EXPECT_THAT(result.output, HasSubstr("Ferrowyn " FERROWYN_VERSION));
    EXPECT_THAT(result.output, Not(HasSubstr("Secret")));
    EXPECT_EQ(desktop.activeWindow(), window.id());
}

TEST_F(DoctorProgramTest, KnowsTheProgramThatRuns) {
    const x11test::WindowManagerProcess manager(server, "openbox");
    x11test::FerrowynProgram program(FERROWYN_PROGRAM, server);
    ASSERT_TRUE(program.waitUntilActive());
    x11test::TestDesktop desktop(server.display());
    ASSERT_TRUE(desktop.waitUntil([&] { return display().triggerKeys().text.find("belongs") != std::string::npos; }));
    const auto result = runDoctor();
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_THAT(result.output, HasSubstr("Alt+Tab belongs to the Ferrowyn that runs"));
    EXPECT_THAT(result.output, MatchesRegex("(.|\n|\r)*Ferrowyn +running(.|\n|\r)*"));
}

/// The line neither belongs to the report nor is empty.
bool isStray(std::string_view line) {
    return !line.empty() && !line.starts_with("Switching windows can") && !line.starts_with('[') &&
           line.find("-> ") == std::string_view::npos;
}

TEST_F(DoctorProgramTest, SaysNothingBesideItsReport) {
    const x11test::PrivateBus bus(server);
    auto environment = server.clientEnvironment();
    environment["DBUS_SESSION_BUS_ADDRESS"] = bus.address();
    // Several at a time, so that their threads get in each other's way.
    constexpr int rounds = 5;
    constexpr int programsAtATime = 8;
    for (int round = 0; round < rounds; ++round) {
        std::vector<std::unique_ptr<x11test::ChildProcess>> programs;
        for (int number = 0; number < programsAtATime; ++number) {
            programs.push_back(std::make_unique<x11test::ChildProcess>(
                x11test::ChildProcess::Options{.command = {FERROWYN_PROGRAM, "--doctor"}, .environment = environment}));
        }
        for (const auto& program : programs) {
            ASSERT_TRUE(program->waitForExit().has_value());
            std::istringstream output(program->output());
            for (std::string line; std::getline(output, line);) {
                line.erase(std::remove(line.begin(), line.end(), '\r'), line.end());
                ASSERT_FALSE(isStray(line)) << line;
            }
        }
    }
}

}  // namespace
}  // namespace ferrowyn
