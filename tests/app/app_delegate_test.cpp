#include "app/app_delegate.h"

#include <optional>

#include "app/app_services.h"
#include "input/switcher_controller.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_display.h"
#include "tests/app/recorded_interface.h"
#include "tests/input/print_log_line.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using LogLine = SimulatedDesktop::LogLine;

const LogLine active{LogLevel::standard, "permissions", "Services active"};
const LogLine suspended{LogLevel::standard, "permissions", "Services suspended — Accessibility trust missing"};

class AppDelegateTest : public testing::Test {
protected:
    AppDelegateTest() {
        desktop.launch({.pid = 100, .bundleIdentifier = "org.editor", .localizedName = "Editor"}, true);
        desktop.openWindow({.id = 2, .pid = 100, .title = "Window 2"}, true);
        desktop.openWindow({.id = 1, .pid = 100, .title = "Window 1"}, true);
        desktop.setFrontmost(100);
        delegate.emplace(desktop.platform(), interface);
    }
    void launchQuietly() {
        delegate->applicationDidFinishLaunching();
        desktop.settle();
        static_cast<void>(interface.takeSteps());
        static_cast<void>(desktop.takeLog());
        static_cast<void>(desktop.takeControlCalls());
    }
    void choose(MenuRow::Action action) {
        const auto row = std::ranges::find_if(interface.statusItem->menu, [action](const MenuRow& candidate) {
            return candidate.action == action && candidate.kind == MenuRow::Kind::item;
        });
        ASSERT_NE(row, interface.statusItem->menu.end());
        interface.statusItem->choose(MenuRow(*row));
    }

    SimulatedDesktop desktop;
    RecordedInterface interface;
    std::optional<AppDelegate> delegate;
};

TEST_F(AppDelegateTest, WithTrustItStartsSilentlyAndActiveBeforeAnythingIsMadeToBeSeen) {
    delegate->applicationDidFinishLaunching();
    EXPECT_THAT(desktop.application().policies, ElementsAre(ActivationPolicy::accessory));
    EXPECT_THAT(interface.takeSteps(), ElementsAre("make \"Ferrowyn Setup\"", "make \"Ferrowyn Settings\" resizable",
                                                   "make \"About Ferrowyn\"", "make status item"));
    EXPECT_TRUE(interface.wasActiveAtFirstWindow);
    EXPECT_THAT(desktop.takeLog(), Contains(active));
    EXPECT_EQ(desktop.trustPromptCount(), 0);
    EXPECT_FALSE(delegate->services()->authorizer().hasRequestedTrust());
}

TEST_F(AppDelegateTest, TheStatusItemIsSetUpOnceAndFollowsTheServices) {
    launchQuietly();
    // Once at the launch, and once more with the first window list.
    ASSERT_EQ(interface.statusItem->buttonCount, 2);
    ASSERT_EQ(interface.statusItem->menuCount, 2);
    EXPECT_EQ(interface.statusItem->button.tooltip, "Ferrowyn");
    delegate->services()->preferences().layout.set(SwitcherLayout::grid);
    desktop.settle();
    EXPECT_EQ(interface.statusItem->menuCount, 3);
}

TEST_F(AppDelegateTest, WithoutTrustItAsksOnceAndShowsTheSetupWindowLast) {
    desktop.setTrusted(false);
    delegate->applicationDidFinishLaunching();
    EXPECT_THAT(interface.takeSteps(), ElementsAre("make \"Ferrowyn Setup\"", "make \"Ferrowyn Settings\" resizable",
                                                   "make \"About Ferrowyn\"", "make status item", "show setup"));
    EXPECT_EQ(desktop.trustPromptCount(), 1);
    EXPECT_TRUE(delegate->services()->authorizer().hasRequestedTrust());
    EXPECT_FALSE(delegate->services()->isActive());
    EXPECT_THAT(desktop.takeLog(), Not(Contains(suspended))) << "they were never active";
    desktop.advance(10s);
    EXPECT_EQ(desktop.trustPromptCount(), 1);
    EXPECT_THAT(interface.takeSteps(), IsEmpty());
}

TEST_F(AppDelegateTest, TrustGrantedLaterActivatesWithinASecondOfTheLaunch) {
    desktop.setTrusted(false);
    delegate->applicationDidFinishLaunching();
    desktop.setTrusted(true);
    desktop.advance(1s);
    EXPECT_TRUE(delegate->services()->isActive());
    EXPECT_EQ(interface.statusItem->button.tooltip, "Ferrowyn");
}

TEST_F(AppDelegateTest, AtTheFirstRunTheNextLookAtTheTrustIsAWholeSecondAfterThePrompt) {
    desktop.setTrusted(false);
    interface.whileTheStatusItemIsMade = [this] { desktop.advance(0.6s); };
    delegate->applicationDidFinishLaunching();
    desktop.setTrusted(true);
    desktop.advance(0.999s);
    EXPECT_FALSE(delegate->services()->isActive()) << "not a second after the start";
    desktop.advance(0.001s);
    EXPECT_TRUE(delegate->services()->isActive());
}

TEST_F(AppDelegateTest, TheAboutWindowIsNamedAfterTheBundleIfItHasAName) {
    desktop.application().bundle.name = "Ferrowyn Nightly";
    delegate->applicationDidFinishLaunching();
    EXPECT_THAT(interface.takeSteps(), Contains("make \"About Ferrowyn Nightly\""));
}

TEST_F(AppDelegateTest, TheAboutWindowOfABundleWithoutANameIsNamedAfterTheProgram) {
    desktop.application().bundle.name = std::nullopt;
    delegate->applicationDidFinishLaunching();
    EXPECT_THAT(interface.takeSteps(), Contains("make \"About Ferrowyn\""));
}

TEST_F(AppDelegateTest, OpeningItAgainShowsTheSetupWindowWhetherTrustedOrNot) {
    launchQuietly();
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_THAT(interface.takeSteps(), ElementsAre("show setup"));
    desktop.setTrusted(false);
    desktop.advance(3s);
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
    EXPECT_THAT(interface.takeSteps(), ElementsAre("show setup"));
}

TEST_F(AppDelegateTest, SettingsThatAreAskedForBeforeTheLaunchShowProgressUntilThereAreServices) {
    delegate->perform(ProgramRequest::openSettings);
    delegate->perform(ProgramRequest::openSettings);
    EXPECT_THAT(interface.takeSteps(), ElementsAre("make \"Ferrowyn Settings\"", "show progress", "show progress"));
    EXPECT_EQ(delegate->services(), nullptr);
    delegate->applicationDidFinishLaunching();
    EXPECT_THAT(interface.takeSteps(), testing::IsSupersetOf({"show settings", "close progress"}));
    delegate->perform(ProgramRequest::openSettings);
    EXPECT_THAT(interface.takeSteps(), ElementsAre("show settings"));
}

TEST_F(AppDelegateTest, BeforeTheLaunchNothingElseIsDone) {
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    delegate->perform(ProgramRequest::openSetup);
    delegate->perform(ProgramRequest::openSwitcher);
    EXPECT_FALSE(delegate->showSettingsPage(SettingsPage::accessibility));
    delegate->applicationWillTerminate();
    EXPECT_THAT(interface.takeSteps(), IsEmpty());
    EXPECT_EQ(delegate->services(), nullptr);
}

TEST_F(AppDelegateTest, QuittingStopsTheMonitorBeforeTheIndexAndSaysNothingOfASuspension) {
    launchQuietly();
    std::vector<std::string> order;
    auto& services = *delegate->services();
    const auto monitorWatch = services.hotKeyMonitor().isRunning().subscribeToChanges(
        [&](bool isRunning) { order.push_back(isRunning ? "monitor started" : "monitor stopped"); });
    const auto indexWatch = services.windowIndex().windows().subscribeToChanges(
        [&](const auto& windows) { order.push_back(windows.empty() ? "index stopped" : "index published"); });
    delegate->applicationWillTerminate();
    EXPECT_THAT(order, ElementsAre("monitor stopped", "index stopped"));
    EXPECT_THAT(desktop.takeLog(), Not(Contains(suspended)));
    EXPECT_TRUE(services.isActive());
}

TEST_F(AppDelegateTest, TheMenuOpensTheWindows) {
    launchQuietly();
    choose(MenuRow::Action::openSettings);
    choose(MenuRow::Action::openOnboarding);
    choose(MenuRow::Action::openAbout);
    EXPECT_THAT(interface.takeSteps(), ElementsAre("show settings", "show setup", "show about"));
    choose(MenuRow::Action::quit);
    EXPECT_EQ(desktop.application().terminationCount, 1);
}

TEST_F(AppDelegateTest, TheWindowsOwnButtonsCloseThem) {
    launchQuietly();
    interface.onboardingDone();
    interface.aboutClosed();
    EXPECT_THAT(interface.takeSteps(), ElementsAre("close setup", "close about"));
    delegate.reset();
    interface.onboardingDone();
    interface.aboutClosed();
    EXPECT_THAT(interface.takeSteps(), IsEmpty()) << "views that outlive it reach nothing";
}

TEST_F(AppDelegateTest, DoesWhatIsAskedFromOutside) {
    launchQuietly();
    delegate->perform(ProgramRequest::openSetup);
    delegate->perform(ProgramRequest::openSettings);
    EXPECT_THAT(interface.takeSteps(), ElementsAre("show setup", "show settings"));
    delegate->perform(ProgramRequest::openSwitcher);
    EXPECT_TRUE(delegate->services()->switcher().isVisible());
    EXPECT_TRUE(delegate->services()->switcher().viewModel().isPinned.get());
    delegate->perform(ProgramRequest::quit);
    EXPECT_EQ(desktop.application().terminationCount, 0) << "not before the loop runs";
    desktop.settle();
    EXPECT_EQ(desktop.application().terminationCount, 1);
}

TEST_F(AppDelegateTest, TheSwitcherAskedForAtTheLaunchOpensWithTheWindows) {
    delegate->applicationDidFinishLaunching();
    delegate->perform(ProgramRequest::openSwitcher);
    EXPECT_FALSE(delegate->services()->switcher().isVisible());
    desktop.settle();
    ASSERT_TRUE(delegate->services()->switcher().isVisible());
    EXPECT_EQ(delegate->services()->switcher().viewModel().rows.get().size(), 2U);
    delegate->services()->switcher().dismiss();
    desktop.advance(10s);
    EXPECT_FALSE(delegate->services()->switcher().isVisible()) << "once";
}

TEST_F(AppDelegateTest, TheSwitcherAskedForIsForgottenWhenTrustIsLostBeforeThereAreWindows) {
    delegate->applicationDidFinishLaunching();
    delegate->perform(ProgramRequest::openSwitcher);
    desktop.setTrusted(false);
    delegate->services()->authorizer().refresh();
    desktop.advance(10s);
    ASSERT_FALSE(delegate->services()->isActive());
    desktop.setTrusted(true);
    delegate->services()->authorizer().refresh();
    desktop.advance(10s);
    ASSERT_TRUE(delegate->services()->isActive());
    EXPECT_FALSE(delegate->services()->switcher().isVisible());
}

TEST_F(AppDelegateTest, TheSwitcherAskedForWithoutTrustIsTheSetupWindow) {
    desktop.setTrusted(false);
    launchQuietly();
    delegate->perform(ProgramRequest::openSwitcher);
    EXPECT_THAT(interface.takeSteps(), ElementsAre("show setup"));
    EXPECT_FALSE(delegate->services()->switcher().isVisible());
}

TEST_F(AppDelegateTest, StandsInForTheSettingsOfASystemThatHasNone) {
    launchQuietly();
    EXPECT_TRUE(delegate->showSettingsPage(SettingsPage::accessibility));
    EXPECT_FALSE(delegate->showSettingsPage(SettingsPage::loginItems));
    EXPECT_THAT(interface.takeSteps(), ElementsAre("show setup"));
}

TEST_F(AppDelegateTest, LeavesNothingBehindWhenItGoes) {
    launchQuietly();
    delegate.reset();
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

}  // namespace
}  // namespace ferrowyn
