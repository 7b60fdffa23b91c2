#include "app/app_services.h"

#include <algorithm>
#include <optional>

#include "input/switcher_controller.h"
#include "input/window_activator.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_system.h"
#include "tests/input/panel_doubles.h"
#include "tests/input/print_log_line.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using Failure = HotKeyMonitor::Failure;
using LogLine = SimulatedDesktop::LogLine;

constexpr Pid editor = 100;
constexpr Pid browser = 200;
const SimulatedDesktop::Key optionTab{48, event_flags::option, u"\t", u"\t"};

const LogLine active{LogLevel::standard, "permissions", "Services active"};
const LogLine suspended{LogLevel::standard, "permissions", "Services suspended — Accessibility trust missing"};
const LogLine tapInstalled{LogLevel::standard, "input", "Event tap installed"};
const LogLine tapRemoved{LogLevel::standard, "input", "Event tap removed"};
const LogLine refused{LogLevel::error, "input", "CGEvent.tapCreate failed"};
const LogLine retrying{LogLevel::error, "input", "Event tap refused despite trust; retrying"};

class AppServicesTest : public ::testing::Test {
protected:
    AppServicesTest() {
        desktop.launch({.pid = editor, .bundleIdentifier = "org.editor", .localizedName = "Editor"}, true);
        desktop.launch({.pid = browser, .bundleIdentifier = "org.browser", .localizedName = "Browser"}, true);
        for (const WindowId id : {4U, 3U, 2U, 1U}) {
            desktop.openWindow({.id = id, .pid = id > 2 ? browser : editor, .title = "Window " + std::to_string(id)},
                               true);
        }
        desktop.setFrontmost(editor);
    }

    void build() {
        services.emplace(desktop.platform(), stubContentFactory(content));
        desktop.settle();
    }
    void buildQuietly() {
        build();
        desktop.advance(1s);
        forgetLog();
    }
    void forgetLog() { static_cast<void>(desktop.takeLog()); }
    std::vector<LogLine> takeLogOf(std::string_view category) {
        std::vector<LogLine> lines;
        for (auto& line : desktop.takeLog()) {
            if (line.category == category) {
                lines.push_back(std::move(line));
            }
        }
        return lines;
    }
    /// Without what the window index says about its own work.
    std::vector<LogLine> takeServicesLog() {
        auto lines = desktop.takeLog();
        std::erase_if(lines, [](const LogLine& line) { return line.category == "windows"; });
        return lines;
    }
    std::vector<WindowId> listedWindows() {
        std::vector<WindowId> ids;
        for (const auto& window : services->windowIndex().windows().get()) {
            ids.push_back(window.id);
        }
        return ids;
    }
    void timeOutFiveTimes() {
        for (int timeout = 0; timeout < 5; ++timeout) {
            desktop.disableTapByTimeout();
            desktop.settle();
        }
    }

    SimulatedDesktop desktop;
    SwitcherContentCallbacks content;
    std::optional<AppServices> services;
};

TEST_F(AppServicesTest, AreActiveWhenConstructionEndsWithTrustGivenBefore) {
    services.emplace(desktop.platform(), stubContentFactory(content));
    EXPECT_TRUE(services->isActive());
    EXPECT_TRUE(services->hotKeyMonitor().isRunning().get());
    EXPECT_EQ(services->inputFailure().get(), std::nullopt);
    EXPECT_EQ(desktop.trustPromptCount(), 0);
    EXPECT_THAT(takeServicesLog(), ElementsAre(tapInstalled, active));
    desktop.settle();
    EXPECT_THAT(listedWindows(), ElementsAre(1U, 2U, 3U, 4U));
}

TEST_F(AppServicesTest, StayInactiveWithoutTrustAndSayNothing) {
    desktop.setTrusted(false);
    build();
    EXPECT_FALSE(services->isActive());
    EXPECT_FALSE(services->hotKeyMonitor().isRunning().get());
    EXPECT_THAT(listedWindows(), IsEmpty());
    EXPECT_THAT(takeServicesLog(), IsEmpty());
}

TEST_F(AppServicesTest, ActivateOnceWhenTrustIsGrantedLater) {
    desktop.setTrusted(false);
    build();
    desktop.setTrusted(true);
    desktop.advance(1s);
    services->authorizer().refresh();
    desktop.announceTrustChange();
    desktop.advance(1s);
    EXPECT_TRUE(services->isActive());
    EXPECT_EQ(desktop.tapStartCount(), 1);
    EXPECT_THAT(
        takeLogOf("permissions"),
        ElementsAre(LogLine{LogLevel::standard, "permissions", "Accessibility trust changed to trusted"}, active));
}

TEST_F(AppServicesTest, ActivatingTwiceAndSuspendingWhileInactiveDoNothing) {
    buildQuietly();
    services->activate();
    EXPECT_EQ(desktop.tapStartCount(), 1);
    EXPECT_THAT(takeServicesLog(), IsEmpty());
    services->suspend();
    EXPECT_THAT(takeServicesLog(), ElementsAre(tapRemoved, suspended));
    services->suspend();
    EXPECT_THAT(takeServicesLog(), IsEmpty());
}

TEST_F(AppServicesTest, UseThePreferencesTheyAreGiven) {
    auto preferences = std::make_unique<Preferences>(desktop.platform().userDefaults);
    preferences->modifier.set(SwitcherModifier::control);
    Preferences* const given = preferences.get();
    services.emplace(desktop.platform(), stubContentFactory(content), std::move(preferences));
    EXPECT_EQ(&services->preferences(), given);
    EXPECT_EQ(desktop.tapTrigger(), SwitcherModifier::control);
}

TEST_F(AppServicesTest, ActivateAgainAfterASuspensionWithoutAFailureLeft) {
    buildQuietly();
    timeOutFiveTimes();
    services->suspend();
    services->activate();
    EXPECT_EQ(services->inputFailure().get(), std::nullopt);
    EXPECT_TRUE(services->hotKeyMonitor().isRunning().get());
}

TEST_F(AppServicesTest, TakeTheVersionOfTheBundle) {
    desktop.application().bundle.shortVersion = "2.3.1-beta";
    build();
    EXPECT_EQ(services->updates().currentVersion().original(), "2.3.1-beta");
}

TEST_F(AppServicesTest, TakeVersionOneWhenTheBundleHasNone) {
    desktop.application().bundle.shortVersion = std::nullopt;
    build();
    EXPECT_EQ(services->updates().currentVersion().original(), "1.0");
}

TEST_F(AppServicesTest, KnowWhetherTheProgramStartsAtLogin) {
    desktop.loginItem().current = LoginItem::Status::enabled;
    build();
    EXPECT_TRUE(std::holds_alternative<LaunchAtLoginService::Enabled>(services->launchAtLogin().state().get()));
    EXPECT_THAT(desktop.loginItem().requests, IsEmpty());
}

TEST_F(AppServicesTest, CheckForUpdatesAtTheStartWhenNoneWasEverChecked) {
    build();
    EXPECT_EQ(desktop.httpClient().requestCount(), 1U);
    EXPECT_TRUE(std::holds_alternative<UpdateChecker::Checking>(services->updates().state().get()));
    desktop.advance(std::chrono::hours(72));
    EXPECT_EQ(desktop.httpClient().requestCount(), 1U) << "only at the start";
}

TEST_F(AppServicesTest, CheckForUpdatesAtTheStartAgainAfterADay) {
    const auto now = desktop.wallTime().time_since_epoch().count();
    desktop.userDefaults().set("updates.lastCheck", now - 25 * 3600.0);
    build();
    EXPECT_EQ(desktop.httpClient().requestCount(), 1U);
}

TEST_F(AppServicesTest, DoNotCheckForUpdatesWithinADay) {
    const auto now = desktop.wallTime().time_since_epoch().count();
    desktop.userDefaults().set("updates.lastCheck", now - 23 * 3600.0);
    build();
    EXPECT_EQ(desktop.httpClient().requestCount(), 0U);
    EXPECT_TRUE(std::holds_alternative<UpdateChecker::Idle>(services->updates().state().get()));
}

TEST_F(AppServicesTest, DoNotCheckForUpdatesWhenTheUserDoesNotWantTo) {
    desktop.userDefaults().set("updates.automatic", false);
    build();
    EXPECT_EQ(desktop.httpClient().requestCount(), 0U);
}

TEST_F(AppServicesTest, CheckForUpdatesWithoutTrustToo) {
    desktop.setTrusted(false);
    build();
    EXPECT_EQ(desktop.httpClient().requestCount(), 1U);
}

TEST_F(AppServicesTest, SuspendEverythingWhenTrustIsLost) {
    buildQuietly();
    const auto& window = services->windowIndex().windows().get().front();
    static_cast<void>(services->iconProvider().icon(window));
    services->switcher().show(false);
    const AppWindow listed = window;
    static_cast<void>(desktop.takeIconLoads());

    desktop.setTrusted(false);
    desktop.advance(2s);
    EXPECT_FALSE(services->isActive());
    EXPECT_FALSE(services->switcher().isVisible());
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_THAT(listedWindows(), IsEmpty());
    EXPECT_THAT(takeLogOf("permissions"),
                ElementsAre(LogLine{LogLevel::standard, "permissions", "Accessibility trust changed to notTrusted"},
                            suspended));
    static_cast<void>(services->iconProvider().icon(listed));
    EXPECT_EQ(desktop.takeIconLoads().size(), 1U) << "the icons were forgotten";
}

TEST_F(AppServicesTest, SuspendTheSessionThenTheTapThenTheIndexThenTheIcons) {
    buildQuietly();
    const AppWindow listed = services->windowIndex().windows().get().front();
    static_cast<void>(services->iconProvider().icon(listed));
    services->switcher().show(false);
    // What is still there when each of them goes.
    std::vector<std::string> order;
    const auto remaining = [&] {
        std::string text;
        text += desktop.panel().isVisible ? " panel" : "";
        text += desktop.tapIsInstalled() ? " tap" : "";
        text += listedWindows().empty() ? "" : " windows";
        text += services->iconProvider().holds(listed) ? " icons" : "";
        return text;
    };
    const auto session = services->switcher().viewModel().query.subscribeToChanges(
        [&](const std::string&) { order.push_back("session of" + remaining()); });
    const auto tap = services->hotKeyMonitor().isRunning().subscribeToChanges(
        [&](bool) { order.push_back("tap of" + remaining()); });
    const auto index = services->windowIndex().windows().subscribeToChanges(
        [&](const auto&) { order.push_back("index of" + remaining()); });
    services->suspend();
    EXPECT_THAT(order, ElementsAre("session of tap windows icons", "tap of tap windows icons", "index of icons"));
    EXPECT_EQ(remaining(), "");
    EXPECT_THAT(takeServicesLog(), ElementsAre(tapRemoved, suspended));
}

TEST_F(AppServicesTest, RetryARefusedTapOnceAfterOneSecond) {
    desktop.refuseKeyboardTap("CGEvent.tapCreate failed");
    build();
    EXPECT_TRUE(services->isActive());
    EXPECT_THAT(takeServicesLog(), ElementsAre(refused, retrying, active));
    desktop.allowKeyboardTap();
    desktop.advance(0.999s);
    EXPECT_FALSE(services->hotKeyMonitor().isRunning().get());
    desktop.advance(0.001s);
    EXPECT_TRUE(services->hotKeyMonitor().isRunning().get());
    EXPECT_EQ(services->inputFailure().get(), std::nullopt);
}

TEST_F(AppServicesTest, LeaveTheShortcutOffWhenTheTapIsRefusedTwice) {
    desktop.refuseKeyboardTap("CGEvent.tapCreate failed");
    build();
    desktop.advance(60s);
    EXPECT_THAT(takeLogOf("input"), ElementsAre(refused, retrying, refused));
    EXPECT_FALSE(services->hotKeyMonitor().isRunning().get());
    EXPECT_EQ(services->inputFailure().get(), std::nullopt);
}

TEST_F(AppServicesTest, DoNotRetryOnceSuspended) {
    desktop.refuseKeyboardTap("CGEvent.tapCreate failed");
    build();
    desktop.allowKeyboardTap();
    services->suspend();
    desktop.advance(1.5s);
    EXPECT_FALSE(services->hotKeyMonitor().isRunning().get());
    EXPECT_EQ(desktop.tapStartCount(), 0);
}

TEST_F(AppServicesTest, CloseTheSessionWhenTheTapIsDisabled) {
    buildQuietly();
    desktop.keyDown(optionTab);
    desktop.settle();
    ASSERT_TRUE(services->switcher().isVisible());
    static_cast<void>(desktop.takeControlCalls());
    desktop.disableTapByUserInput();
    EXPECT_TRUE(desktop.keyDown(optionTab)) << "a disabled tap takes no key";
    desktop.settle();
    EXPECT_FALSE(services->switcher().isVisible());
    EXPECT_FALSE(desktop.tapSessionIsOpen());
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty()) << "no window was activated";
    EXPECT_TRUE(services->hotKeyMonitor().isRunning().get());
}

TEST_F(AppServicesTest, SayThatTheShortcutIsOffAfterRepeatedTimeouts) {
    buildQuietly();
    services->switcher().show(false);
    timeOutFiveTimes();
    EXPECT_FALSE(services->switcher().isVisible());
    EXPECT_EQ(services->inputFailure().get(), Failure::repeatedTimeouts);
    EXPECT_TRUE(services->isActive());
    EXPECT_THAT(takeLogOf("input"),
                Contains(LogLine{LogLevel::error, "input", "Global shortcut disabled after repeated tap timeouts"}));
}

TEST_F(AppServicesTest, BringTheShortcutBackOnRequest) {
    buildQuietly();
    timeOutFiveTimes();
    services->retryInput();
    EXPECT_EQ(services->inputFailure().get(), std::nullopt);
    EXPECT_TRUE(services->hotKeyMonitor().isRunning().get());
    EXPECT_TRUE(desktop.tapIsEnabled());
    EXPECT_EQ(desktop.tapStartCount(), 2);
}

TEST_F(AppServicesTest, RestartARunningTapOnRequest) {
    buildQuietly();
    services->retryInput();
    EXPECT_THAT(takeServicesLog(), ElementsAre(tapRemoved, tapInstalled));
}

TEST_F(AppServicesTest, ReportARefusedRetryAsRevokedTrust) {
    buildQuietly();
    timeOutFiveTimes();
    desktop.refuseKeyboardTap("CGEvent.tapCreate failed");
    services->retryInput();
    EXPECT_EQ(services->inputFailure().get(), Failure::trustRevoked);
    EXPECT_TRUE(services->isActive());
}

TEST_F(AppServicesTest, OpenTheSettingsOnARetryWithoutTrust) {
    desktop.setTrusted(false);
    build();
    services->retryInput();
    EXPECT_EQ(services->inputFailure().get(), std::nullopt);
    EXPECT_EQ(desktop.tapStartCount(), 0);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("settings accessibility"));
}

TEST_F(AppServicesTest, SuspendWhenTheTapFindsTrustRevokedAndRecoverWhenItReturns) {
    buildQuietly();
    // The monitor's check at 3 s sees it before the authorizer's at 4 s.
    desktop.advance(1.5s);
    desktop.setTrusted(false);
    desktop.advance(0.5s);
    EXPECT_FALSE(services->isActive());
    EXPECT_FALSE(services->hotKeyMonitor().isRunning().get());
    EXPECT_EQ(services->inputFailure().get(), Failure::trustRevoked);
    const auto log = desktop.takeLog();
    EXPECT_THAT(log,
                Contains(LogLine{LogLevel::standard, "input", "Accessibility trust lost; stopping the event tap"}));
    EXPECT_THAT(log, Contains(suspended));

    desktop.setTrusted(true);
    desktop.advance(1s);
    EXPECT_TRUE(services->isActive());
    EXPECT_EQ(services->inputFailure().get(), std::nullopt);
    EXPECT_TRUE(desktop.tapIsEnabled());
}

TEST_F(AppServicesTest, StopTheMonitorBeforeTheIndexWhenTheProgramQuits) {
    buildQuietly();
    std::vector<std::string> order;
    const auto monitorWatch = services->hotKeyMonitor().isRunning().subscribeToChanges(
        [&](bool isRunning) { order.push_back(isRunning ? "monitor started" : "monitor stopped"); });
    const auto indexWatch = services->windowIndex().windows().subscribeToChanges(
        [&](const auto& windows) { order.push_back(windows.empty() ? "index stopped" : "index published"); });
    services->terminate();
    EXPECT_THAT(order, ElementsAre("monitor stopped", "index stopped"));
    EXPECT_THAT(takeServicesLog(), ElementsAre(tapRemoved)) << "nothing about a suspension";
    EXPECT_TRUE(services->isActive());
}

TEST_F(AppServicesTest, LeaveNothingBehindWhenTheyGo) {
    buildQuietly();
    desktop.keyDown(optionTab);
    services.reset();
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
    desktop.advance(60s);
    content.onRequestPermissions();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

// --- one key press, end to end
// ----------------------------------------------------------------------------------------

TEST_F(AppServicesTest, HoldingPressingAndReleasingSwitchesToThePreviousWindow) {
    services.emplace(desktop.platform(), stubContentFactory(content));
    services->preferences().showActiveAppWindowsFirst.set(false);
    desktop.advance(1s);
    desktop.focusWindow(3);
    desktop.advance(1s);
    ASSERT_THAT(listedWindows().front(), 3U);
    const WindowId previous = listedWindows().at(1);
    static_cast<void>(desktop.takeControlCalls());

    EXPECT_FALSE(desktop.keyDown(optionTab));
    EXPECT_TRUE(desktop.lastTapVerdict().requestedSession);
    desktop.settle();
    EXPECT_TRUE(desktop.panel().isVisible);
    EXPECT_TRUE(desktop.tapSessionIsOpen());
    EXPECT_EQ(services->switcher().viewModel().selectedWindow()->id, previous);

    EXPECT_FALSE(desktop.keyUp(optionTab));
    EXPECT_TRUE(desktop.flagsChanged(0)) << "the application hears of the released modifier";
    desktop.settle();
    EXPECT_FALSE(desktop.panel().isVisible);
    EXPECT_FALSE(desktop.tapSessionIsOpen());
    EXPECT_EQ(desktop.frontmostPid(), desktop.window(previous)->pid);
    EXPECT_EQ(desktop.focusedWindow(desktop.window(previous)->pid), previous);

    desktop.advance(1s);
    EXPECT_THAT(listedWindows().front(), previous);
    EXPECT_THAT(listedWindows().at(1), 3U);
}

TEST_F(AppServicesTest, EverythingTypedInOneSessionIsSwallowedAndNothingAfterIt) {
    buildQuietly();
    const SimulatedDesktop::Key letter{13, event_flags::option, u"∑", u"w"};
    EXPECT_TRUE(desktop.keyDown(letter));
    desktop.keyDown(optionTab);
    desktop.settle();
    EXPECT_FALSE(desktop.keyDown(letter));
    EXPECT_FALSE(desktop.keyUp(letter));
    desktop.settle();
    EXPECT_EQ(services->switcher().viewModel().query.get(), "w");
    EXPECT_FALSE(desktop.keyDown({53, 0, u"\x1b", u"\x1b"}));
    desktop.settle();
    EXPECT_FALSE(desktop.panel().isVisible);
    EXPECT_TRUE(desktop.keyDown(letter));
}

TEST_F(AppServicesTest, ATriggerWithoutTrustGivesTheKeyboardBack) {
    buildQuietly();
    desktop.keyDown(optionTab);
    desktop.setTrusted(false);
    services->authorizer().refresh();
    desktop.settle();
    EXPECT_FALSE(desktop.panel().isVisible);
    EXPECT_FALSE(desktop.tapIsInstalled()) << "and with it whatever it held";
}

TEST_F(AppServicesTest, AChosenWindowLeadsTheListThoughNoFocusChangeTellsOfIt) {
    buildQuietly();
    desktop.setIgnoresActivation(browser, true);
    const auto& windows = services->windowIndex().windows().get();
    const auto chosen = *std::ranges::find(windows, 3U, &AppWindow::id);
    services->switcher().activator().activate(chosen);
    desktop.advance(1s);
    EXPECT_THAT(listedWindows().front(), 1U);
    desktop.advance(1s);
    EXPECT_THAT(listedWindows().front(), 3U);
}

TEST_F(AppServicesTest, SwitchesToTwoApplicationsThatComeToNothingAreAProblemUntilOneWorks) {
    desktop.launch({.pid = 300, .bundleIdentifier = "org.mail", .localizedName = "Mail"}, true);
    desktop.openWindow({.id = 5, .pid = 300, .title = "Window 5"}, true);
    desktop.setFrontmost(editor);
    buildQuietly();
    desktop.setIgnoresActivation(browser, true);
    desktop.setIgnoresActivation(300, true);
    const auto problemAfterSwitchTo = [this](WindowId id) {
        const auto& windows = services->windowIndex().windows().get();
        services->switcher().activator().activate(
            *std::ranges::find_if(windows, [id](const AppWindow& window) { return window.id == id; }));
        desktop.advance(2s);
        return services->switchingHealth().problem().get();
    };
    EXPECT_EQ(problemAfterSwitchTo(3), std::nullopt);
    EXPECT_EQ(problemAfterSwitchTo(4), std::nullopt) << "the same application";
    EXPECT_EQ(problemAfterSwitchTo(5), SwitchingHealth::Problem::activationsUnconfirmed);
    EXPECT_EQ(problemAfterSwitchTo(2), std::nullopt);
}

TEST_F(AppServicesTest, AKeyOfASessionFromTheMenuIsNoTriggerThatCame) {
    buildQuietly();
    desktop.loseTrigger();
    desktop.loseTrigger();
    const auto problem = [this] { return services->switchingHealth().problem().get(); };
    ASSERT_EQ(problem(), SwitchingHealth::Problem::triggerAnsweredElsewhere);
    services->switcher().showFromMenu();
    EXPECT_FALSE(desktop.keyDown({124, 0, u"\uF703", u"\uF703"})) << "the panel's";
    desktop.settle();
    EXPECT_EQ(problem(), SwitchingHealth::Problem::triggerAnsweredElsewhere);
    desktop.keyDown(optionTab);
    desktop.settle();
    EXPECT_EQ(problem(), std::nullopt);
}

TEST_F(AppServicesTest, ATriggerThatAnotherProgramAnswersIsAProblemUntilItComesOrIsAnotherOne) {
    buildQuietly();
    const auto problem = [this] { return services->switchingHealth().problem().get(); };
    const auto lose = [this] {
        desktop.loseTrigger();
        desktop.loseTrigger();
    };
    lose();
    EXPECT_EQ(problem(), SwitchingHealth::Problem::triggerAnsweredElsewhere);
    desktop.keyDown(optionTab);
    desktop.settle();
    EXPECT_EQ(problem(), std::nullopt);
    lose();
    services->preferences().modifier.set(SwitcherModifier::control);
    EXPECT_EQ(problem(), std::nullopt);
    lose();
    services->suspend();
    services->activate();
    EXPECT_EQ(problem(), std::nullopt) << "it may be another desktop";
}

}  // namespace
}  // namespace ferrowyn
