#include <unistd.h>
#include <xcb/res.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "platform/x11/xcb_reply.h"
#include "tests/platform/linux/fake_settings_portal.h"
#include "tests/x11/windows/application_fixture.h"
#include "tests/x11/windows/session_manager.h"

namespace ferrowyn::x11test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ApplicationTest : public ApplicationFixture {
protected:
    [[nodiscard]] xcb_window_t selectionOwner(xcb_atom_t selection) const {
        const auto cookie = xcb_get_selection_owner(desktop.connection(), selection);
        const XcbReply<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(desktop.connection(), cookie, nullptr));
        return reply ? reply->owner : xcb_window_t{XCB_NONE};
    }
};

TEST_F(ApplicationTest, HasThreeConnectionsBesideTheToolkits) {
    const auto count = [this] {
        const xcb_res_client_id_spec_t everyClient{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        const auto cookie = xcb_res_query_client_ids(desktop.connection(), 1, &everyClient);
        const XcbReply<xcb_res_query_client_ids_reply_t> reply(
            xcb_res_query_client_ids_reply(desktop.connection(), cookie, nullptr));
        int connections = 0;
        for (auto ids = reply ? xcb_res_query_client_ids_ids_iterator(reply.get())
                              : xcb_res_client_id_value_iterator_t{};
             ids.rem > 0; xcb_res_client_id_value_next(&ids)) {
            const bool isOfProgram =
                xcb_res_client_id_value_value_length(ids.data) == 1 &&
                *xcb_res_client_id_value_value(ids.data) == static_cast<std::uint32_t>(program->process().pid());
            connections += isOfProgram ? 1 : 0;
        }
        return connections;
    };
    startProgram();
    // For the desktop, for the keyboard, for the claim to be the only program, and the toolkit's.
    EXPECT_EQ(count(), 4);
    // What is made only when it is needed.
    ASSERT_EQ(ask({"--settings"}).status, 0);
    ASSERT_TRUE(waitForWindow("Ferrowyn Settings"));
    EXPECT_EQ(ask({"--show"}).status, 0);
    waitForSwitcher();
    EXPECT_EQ(count(), 4);
}

TEST_F(ApplicationTest, ASecondStartOpensTheSetupWindowOfTheFirstAndEndsWell) {
    startProgram();
    EXPECT_FALSE(findWindow("Ferrowyn Setup")) << "it started silently";
    const auto second = ask({});
    EXPECT_EQ(second.status, 0);
    EXPECT_THAT(second.output, HasSubstr("already running"));
    EXPECT_TRUE(waitForWindow("Ferrowyn Setup"));
    EXPECT_TRUE(program->process().isRunning());
}

TEST_F(ApplicationTest, TheCommandLineOpensTheSwitcherWhichStaysOpen) {
    startProgram();
    const auto result = ask({"--show"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, IsEmpty());
    waitForSwitcher();
    // The first row is the window that is active already: the second is one key away.
    input.tap(key::down);
    input.tap(key::enter);
    EXPECT_TRUE(desktop.waitForActiveWindow(windows.front()->id()));
    EXPECT_TRUE(desktop.waitForPanel(false));
}

TEST_F(ApplicationTest, ItsWindowsFollowTheAppearanceThatTheSettingsPortalTells) {
    startBus();
    test::FakeSettingsPortal portal(bus->address());
    portal.values = {{"color-scheme", 1U}};
    startProgram();
    EXPECT_EQ(ask({"--settings"}).status, 0);
    const auto settings = waitForWindow("Ferrowyn Settings");
    ASSERT_TRUE(settings);
    const auto isDark = [&] {
        QCoreApplication::processEvents();
        const auto place = desktop.placeOf(*settings);
        // In a corner of the pane, where nothing stands.
        const auto pixel = place ? desktop.pixel(place->x + place->width - 8, place->y + place->height - 8) : 0;
        return (pixel >> 8U & 0xFFU) < 0x80;
    };
    EXPECT_TRUE(poll(isDark));
    portal.change("color-scheme", 2U);
    EXPECT_TRUE(poll([&] { return !isDark(); }));
    portal.change("color-scheme", 1U);
    EXPECT_TRUE(poll(isDark));
}

TEST_F(ApplicationTest, TheCommandLineOpensTheWindows) {
    startProgram();
    EXPECT_EQ(ask({"--settings"}).status, 0);
    const auto settings = waitForWindow("Ferrowyn Settings");
    ASSERT_TRUE(settings);
    EXPECT_TRUE(desktop.waitForActiveWindow(*settings));
    // What a task bar finds the desktop file by, and what it shows without one.
    EXPECT_THAT(desktop.text(*settings, "WM_CLASS"), HasSubstr(std::string("ferrowyn") + '\0' + "ferrowyn"));
    EXPECT_THAT(desktop.cardinals(*settings, "_NET_WM_ICON"), Not(IsEmpty()));
    EXPECT_EQ(ask({"--setup"}).status, 0);
    const auto setup = waitForWindow("Ferrowyn Setup");
    ASSERT_TRUE(setup);
    EXPECT_TRUE(desktop.waitForActiveWindow(*setup));
    EXPECT_EQ(ask({"--settings"}).status, 0);
    EXPECT_TRUE(desktop.waitForActiveWindow(*settings)) << "the same window comes to the front again";
}

TEST_F(ApplicationTest, TheCommandLineEndsItAndReturnsWhenTheKeyboardIsBack) {
    startProgram();
    input.press(key::leftAlt);
    input.tap(key::tab);
    ASSERT_TRUE(desktop.waitForPanel(true));
    EXPECT_FALSE(desktop.keyboardIsFree());
    const auto result = ask({"--quit"});
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.output, IsEmpty());
    expectKeyboardIsBack();
    expectEnd();
}

TEST_F(ApplicationTest, WithoutAWindowManagerItShowsTheSetupWindowAndStaysReachable) {
    manager->process().signal(SIGTERM);
    ASSERT_TRUE(manager->process().waitForExit());
    FerrowynProgram::Options options{.environment = programEnvironment()};
    program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, options);
    ASSERT_TRUE(program->process().waitForOutput("Ferrowyn is running"));
    EXPECT_TRUE(desktop.waitUntil([&] { return findWindow("Ferrowyn Setup").has_value(); }));
    EXPECT_EQ(ask({"--quit"}).status, 0);
    expectEnd();
}

TEST_F(ApplicationTest, EndingItWhileItStillStartsIsNotForgotten) {
    FerrowynProgram::Options options{.environment = programEnvironment()};
    program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, options);
    // It has the display's claim from the very beginning, long before it can do anything.
    const auto claim = desktop.atom("_FERROWYN_INSTANCE_" + std::to_string(getuid()));
    ASSERT_TRUE(poll([&] { return selectionOwner(claim) != XCB_NONE; }));
    EXPECT_EQ(ask({"--quit"}).status, 0);
    expectEnd();
}

TEST_F(ApplicationTest, WhoTakesItsPlaceAwayDoesNotKeepIt) {
    startProgram();
    const auto claim = desktop.atom("_FERROWYN_INSTANCE_" + std::to_string(getuid()));
    const auto owner = selectionOwner(claim);
    for (int round = 0; round < 3; ++round) {
        xcb_set_selection_owner(desktop.connection(), windows.front()->id(), claim, XCB_CURRENT_TIME);
        EXPECT_TRUE(poll([&] { return selectionOwner(claim) == owner; })) << round;
    }
    EXPECT_EQ(ask({"--show"}).status, 0);
    waitForSwitcher();
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
}

TEST_F(ApplicationTest, WhatNobodyHearsIsAnErrorThatSaysSo) {
    const auto claim = desktop.atom("_FERROWYN_INSTANCE_" + std::to_string(getuid()));
    xcb_set_selection_owner(desktop.connection(), windows.front()->id(), claim, XCB_CURRENT_TIME);
    ASSERT_EQ(selectionOwner(claim), windows.front()->id());
    const auto result = ask({"--show"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("does not answer"));
}

TEST_F(ApplicationTest, WhatIsAskedOfAProgramThatIsJustEndingStartsAnother) {
    // A window that stands for the program, which hears what it is asked and ends without an answer.
    std::optional<TestWindow> ending(std::in_place, server.display(), TestWindow::Options{.title = "Ending"});
    const auto claim = desktop.atom("_FERROWYN_INSTANCE_" + std::to_string(getuid()));
    xcb_set_selection_owner(desktop.connection(), ending->id(), claim, XCB_CURRENT_TIME);
    ASSERT_EQ(selectionOwner(claim), ending->id());
    program = std::make_unique<FerrowynProgram>(
        FERROWYN_PROGRAM, server,
        FerrowynProgram::Options{.environment = programEnvironment(), .arguments = {"--show", "--log-level=debug"}});
    bool isAsked = false;
    ASSERT_TRUE(poll([&] {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(ending->connection())}) {
            isAsked = isAsked || (event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE;
        }
        return isAsked;
    }));
    ending.reset();
    ASSERT_TRUE(program->waitUntilActive()) << program->process().output();
    waitForSwitcher();
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    EXPECT_EQ(ask({"--quit"}).status, 0);
    expectEnd();
}

TEST_F(ApplicationTest, EndingWhatDoesNotRunIsAnErrorThatSaysSo) {
    const auto result = ask({"--quit"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr("ferrowyn: Ferrowyn is not running on this display."));
    startBus();
    EXPECT_EQ(ask({"--quit"}).status, 1);
    EXPECT_FALSE(isOnBus()) << "nothing was started to be ended";
}

TEST_F(ApplicationTest, WhatIsAskedOfAProgramThatDoesNotRunStartsIt) {
    startProgram({"--show"});
    waitForSwitcher();
    input.tap(key::down);
    input.tap(key::enter);
    EXPECT_TRUE(desktop.waitForActiveWindow(windows.front()->id())) << "it opened with the windows in it";
}

TEST_F(ApplicationTest, ASavedSessionDoesNotStartItASecondTime) {
    SessionManager session;
    auto variables = programEnvironment();
    variables["SESSION_MANAGER"] = session.address();
    FerrowynProgram::Options options{.environment = variables};
    program = std::make_unique<FerrowynProgram>(FERROWYN_PROGRAM, server, options);
    ASSERT_TRUE(session.waitForSaving());
    EXPECT_EQ(session.restartStyle(), SmRestartNever);
    ASSERT_TRUE(program->process().waitForOutput("Ferrowyn is running"));
    EXPECT_EQ(ask({"--quit"}).status, 0);
    expectEnd();
}

TEST_F(ApplicationTest, TheDesktopsActionsReachItOverTheBus) {
    startBus();
    startProgram();
    EXPECT_EQ(activateAction("settings").type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitForWindow("Ferrowyn Settings"));
    EXPECT_EQ(activateAction("setup").type(), QDBusMessage::ReplyMessage);
    const auto setup = waitForWindow("Ferrowyn Setup");
    ASSERT_TRUE(setup);
    EXPECT_TRUE(desktop.waitForActiveWindow(*setup));
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitUntil([&] { return !findWindow("Ferrowyn Setup"); }));
    EXPECT_EQ(activateAction("show").type(), QDBusMessage::ReplyMessage);
    waitForSwitcher();
    input.tap(key::escape);
    EXPECT_TRUE(desktop.waitForPanel(false));
    EXPECT_EQ(activateAction("explode").type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(activate().type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(waitForWindow("Ferrowyn Setup"));
    EXPECT_EQ(activateAction("quit").type(), QDBusMessage::ReplyMessage);
    expectEnd();
    EXPECT_FALSE(isOnBus());
    expectKeyboardIsBack();
}

TEST_F(ApplicationTest, TheCommandLineReachesItFromWhereThereIsNoDisplay) {
    startBus();
    startProgram();
    auto elsewhere = programEnvironment();
    elsewhere["DISPLAY"] = "";
    EXPECT_EQ(ask({"--show"}, elsewhere).status, 0);
    ASSERT_TRUE(desktop.waitForPanel(true));
    EXPECT_EQ(ask({"--quit"}, elsewhere).status, 0);
    expectEnd();
    const auto late = ask({"--settings"}, elsewhere);
    EXPECT_EQ(late.status, 1);
    EXPECT_THAT(late.output, HasSubstr("DISPLAY is not set"));
}

TEST_F(ApplicationTest, TheBusStartsItSilentlyWhenALauncherOpensIt) {
    startBus();
    EXPECT_EQ(activate().type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(activateAction("show").type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(desktop.waitForPanel(true));
    EXPECT_FALSE(findWindow("Ferrowyn Setup"));
    EXPECT_EQ(ask({"--quit"}).status, 0);
    EXPECT_FALSE(isOnBus());
    expectKeyboardIsBack();
}

TEST_F(ApplicationTest, TheBusStartsItForAnAction) {
    startBus();
    EXPECT_EQ(activateAction("show").type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(desktop.waitForPanel(true));
    EXPECT_EQ(activateAction("quit").type(), QDBusMessage::ReplyMessage);
    EXPECT_TRUE(desktop.waitForPanel(false));
}

}  // namespace
}  // namespace ferrowyn::x11test
