#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/input/switcher_controller_fixture.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using namespace command;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST_F(SwitcherControllerTest, WarmsTheContentUpWhereNobodySeesIt) {
    EXPECT_THAT(setUpCalls, ElementsAre("setFrame -10000 -10000 640 300", "orderFront", "layOutContent", "orderOut"));
}

TEST_F(SwitcherControllerTest, InvokeOpensASessionWithTheSecondRow) {
    ASSERT_THAT(shownWindows(), ElementsAre(1U, 2U, 3U, 4U, 5U));
    controller->handle(Invoke{false});
    EXPECT_TRUE(controller->isVisible());
    EXPECT_TRUE(desktop.panel().isVisible);
    EXPECT_EQ(selection(), 1);
    EXPECT_EQ(desktop.panel().calls.back(), "orderFrontRegardless");
}

TEST_F(SwitcherControllerTest, InvokeInReverseOpensASessionWithTheLastRow) {
    controller->handle(Invoke{true});
    EXPECT_EQ(selection(), 4);
}

TEST_F(SwitcherControllerTest, ASecondInvokeMovesTheSelectionAndDoesNotPin) {
    controller->handle(Invoke{false});
    const int token = viewModel().sessionToken.get();
    controller->handle(Invoke{false});
    EXPECT_EQ(selection(), 2);
    controller->handle(Invoke{true});
    controller->handle(Invoke{true});
    EXPECT_EQ(selection(), 0);
    EXPECT_FALSE(viewModel().isPinned.get());
    EXPECT_EQ(viewModel().sessionToken.get(), token);
}

TEST_F(SwitcherControllerTest, SetsTheTapsFlagsRightAfterThePanelIsInFront) {
    std::vector<TapState::Snapshot> atOrderFront;
    spy.onOrderFront = [&] { atOrderFront.push_back(tapSnapshot()); };
    monitor.state().setHoldModeActive(false);
    controller->handle(Invoke{false});
    ASSERT_EQ(atOrderFront.size(), 1U);
    EXPECT_FALSE(atOrderFront[0].isSwitcherVisible);
    EXPECT_EQ(tapSnapshot(), (TapState::Snapshot{event_flags::option, true, true}));
}

TEST_F(SwitcherControllerTest, TellsTheTapOfTheSessionOnceBothFlagsAreSet) {
    const auto* const tap = record();
    controller->handle(Invoke{false});
    EXPECT_THAT(tap->sessions, ElementsAre(RecordingTap::SessionCall{true, true, true, TapSession{1}}));
    controller->handle(Cancel{});
    EXPECT_EQ(tap->sessions.back(), (RecordingTap::SessionCall{false, false, false, TapSession{1}}));
}

TEST_F(SwitcherControllerTest, EveryWayOutOfASessionGivesTheKeyboardBack) {
    const auto* const tap = record();
    const std::vector<std::function<void()>> ways = {
        [&] { controller->handle(Cancel{}); },
        [&] { controller->handle(Confirm{}); },
        [&] { controller->handle(ModifierReleased{}); },
        [&] { controller->handle(SelectIndex{1}); },
        [&] { controller->dismiss(); },
        [&] { desktop.clickElsewhere(); },
        [&] { desktop.advance(31s); },
        [&] { content.onActivate(rowWindow(0)); },
        [&] { content.onRequestPermissions(); },
    };
    for (std::size_t way = 0; way < ways.size(); ++way) {
        controller->handle(Invoke{false});
        ASSERT_TRUE(tap->sessions.back().isOpen) << way;
        ways[way]();
        EXPECT_FALSE(tap->sessions.back().isOpen) << way;
        EXPECT_FALSE(tapSnapshot().isSwitcherVisible) << way;
        EXPECT_FALSE(controller->isVisible()) << way;
        EXPECT_FALSE(desktop.panel().isVisible) << way;
    }
}

TEST_F(SwitcherControllerTest, AsksForARefreshWhenASessionOpens) {
    desktop.openWindow({.id = 6, .pid = browser, .title = "Opened silently"}, true);
    const auto before = windowIndex.lastRefresh().get();
    controller->handle(Invoke{false});
    desktop.advance(0.13s);
    EXPECT_NE(windowIndex.lastRefresh().get(), before);
    EXPECT_EQ(windowIndex.windows().get().size(), 6U);
}

TEST_F(SwitcherControllerTest, WithoutTrustAsksForItInsteadOfOpening) {
    desktop.setTrusted(false);
    desktop.advance(2s);
    const int shown = desktop.panel().orderFrontCount;
    controller->handle(Invoke{false});
    EXPECT_FALSE(controller->isVisible());
    EXPECT_EQ(desktop.panel().orderFrontCount, shown);
    EXPECT_EQ(desktop.trustPromptCount(), 1);
    EXPECT_TRUE(authorizer.hasRequestedTrust());
}

TEST_F(SwitcherControllerTest, DismissingWhileHiddenIsHarmless) {
    controller->handle(Cancel{});
    controller->dismiss();
    EXPECT_FALSE(controller->isVisible());
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

TEST_F(SwitcherControllerTest, EndsTheSessionWhenItCloses) {
    controller->handle(Invoke{false});
    controller->handle(InsertText{"win"});
    controller->handle(Cancel{});
    EXPECT_FALSE(viewModel().isInSession());
    EXPECT_EQ(viewModel().query.get(), "");
    EXPECT_FALSE(viewModel().isPinned.get());
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty()) << "closed without switching";
}

TEST_F(SwitcherControllerTest, TheMenuOpensAPinnedSessionWithTheFirstRow) {
    controller->showFromMenu();
    EXPECT_TRUE(controller->isVisible());
    EXPECT_TRUE(viewModel().isPinned.get());
    EXPECT_EQ(selection(), 0);
    EXPECT_FALSE(tapSnapshot().isHoldModeActive);
    content.onHover(3);
    EXPECT_EQ(selection(), 0) << "the panel has come under the pointer, which chooses nothing by that";
}

TEST_F(SwitcherControllerTest, ThePanelIsGoneBeforeTheActivationStarts) {
    std::optional<std::size_t> callsAtOrderOut;
    controller->handle(Invoke{false});
    spy.onOrderOut = [&] { callsAtOrderOut = desktop.takeControlCalls().size(); };
    controller->handle(Confirm{});
    EXPECT_EQ(callsAtOrderOut, 0U);
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), Contains("raise 2"));

    controller->handle(Invoke{false});
    callsAtOrderOut.reset();
    content.onActivate(rowWindow(3));
    EXPECT_EQ(callsAtOrderOut, 0U);
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), Contains("raise 4"));
}

TEST_F(SwitcherControllerTest, ConfirmingWithoutAWindowJustCloses) {
    closeAllWindows();
    controller->handle(Invoke{false});
    ASSERT_TRUE(controller->isVisible());
    controller->handle(Confirm{});
    EXPECT_FALSE(controller->isVisible());
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

TEST_F(SwitcherControllerTest, ReleasingTheModifierConfirms) {
    controller->handle(Invoke{false});
    controller->handle(ModifierReleased{});
    EXPECT_FALSE(controller->isVisible());
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), Contains("raise 2"));
}

TEST_F(SwitcherControllerTest, ReleasingTheModifierLeavesThePanelOpenWhenTheUserWantsThat) {
    preferences.confirmOnModifierRelease.set(false);
    controller->handle(Invoke{false});
    EXPECT_FALSE(tapSnapshot().isHoldModeActive);
    controller->handle(ModifierReleased{});
    EXPECT_TRUE(controller->isVisible());
}

TEST_F(SwitcherControllerTest, DeliberateNavigationPinsTheSession) {
    for (const SwitcherCommand& command :
         {SwitcherCommand(Move{1}), SwitcherCommand(MoveVertical{1}), SwitcherCommand(MoveToEdge{false}),
          SwitcherCommand(InsertText{"w"}), SwitcherCommand(ToggleLayout{}), SwitcherCommand(ToggleFavourite{})}) {
        controller->handle(Invoke{false});
        EXPECT_TRUE(tapSnapshot().isHoldModeActive);
        controller->handle(command);
        EXPECT_TRUE(viewModel().isPinned.get()) << command.index();
        EXPECT_FALSE(tapSnapshot().isHoldModeActive) << command.index();
        controller->handle(ModifierReleased{});
        EXPECT_TRUE(controller->isVisible()) << command.index();
        controller->handle(Cancel{});
    }
}

TEST_F(SwitcherControllerTest, ADigitSwitchesAtOnceAndOneBeyondTheRowsDoesNothing) {
    controller->handle(Invoke{false});
    controller->handle(SelectIndex{6});
    EXPECT_TRUE(controller->isVisible());
    EXPECT_EQ(selection(), 1);
    EXPECT_FALSE(viewModel().isPinned.get());
    controller->handle(SelectIndex{5});
    EXPECT_FALSE(controller->isVisible());
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), Contains("raise 5"));
}

TEST_F(SwitcherControllerTest, MovesAndEditsAsToldWhileVisible) {
    controller->handle(Invoke{false});
    controller->handle(Move{-1});
    EXPECT_EQ(selection(), 0);
    controller->handle(MoveVertical{3});
    EXPECT_EQ(selection(), 3);
    controller->handle(MoveToEdge{true});
    EXPECT_EQ(selection(), 0);
    controller->handle(MoveToEdge{false});
    EXPECT_EQ(selection(), 4);
    controller->handle(InsertText{"Window 4"});
    EXPECT_EQ(viewModel().query.get(), "Window 4");
    EXPECT_THAT(shownWindows(), ElementsAre(4U));
    controller->handle(DeleteBackward{});
    EXPECT_EQ(viewModel().query.get(), "Window ");
    controller->handle(ClearQuery{});
    EXPECT_EQ(viewModel().query.get(), "");
    EXPECT_TRUE(controller->isVisible());
}

TEST_F(SwitcherControllerTest, IgnoresEverythingButInvokeWhileHidden) {
    const auto rowsBefore = shownWindows();
    const int selectionBefore = selection();
    for (const SwitcherCommand& command :
         {SwitcherCommand(Move{1}), SwitcherCommand(MoveVertical{1}), SwitcherCommand(MoveToEdge{false}),
          SwitcherCommand(SelectIndex{1}), SwitcherCommand(InsertText{"w"}), SwitcherCommand(DeleteBackward{}),
          SwitcherCommand(ClearQuery{}), SwitcherCommand(Confirm{}), SwitcherCommand(ToggleLayout{}),
          SwitcherCommand(ToggleFavourite{}), SwitcherCommand(ModifierReleased{}), SwitcherCommand(Cancel{})}) {
        controller->handle(command);
        EXPECT_FALSE(controller->isVisible()) << command.index();
    }
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    EXPECT_EQ(shownWindows(), rowsBefore);
    EXPECT_EQ(selection(), selectionBefore);
    EXPECT_FALSE(viewModel().isPinned.get());
    EXPECT_EQ(preferences.layout.get(), SwitcherLayout::list);
    EXPECT_THAT(favourites.bundleIdentifiers().get(), IsEmpty());
}

TEST_F(SwitcherControllerTest, CyclesTheLayoutAndStoresIt) {
    controller->handle(Invoke{false});
    for (const auto layout : {SwitcherLayout::grouped, SwitcherLayout::grid, SwitcherLayout::list}) {
        controller->handle(ToggleLayout{});
        EXPECT_EQ(preferences.layout.get(), layout);
        EXPECT_EQ(platform.userDefaults.string("switcher.layout"), rawValue(layout));
    }
}

TEST_F(SwitcherControllerTest, TogglesTheSelectedApplicationAsAFavouriteAndKeepsTheSelection) {
    controller->handle(Invoke{false});
    controller->handle(ToggleFavourite{});
    EXPECT_THAT(favourites.bundleIdentifiers().get(), ElementsAre("org.editor"));
    EXPECT_EQ(viewModel().selectedWindow()->id, 2U);
    EXPECT_TRUE(viewModel().rows.get().at(1).isFavourite);
    controller->handle(ToggleFavourite{});
    EXPECT_THAT(favourites.bundleIdentifiers().get(), IsEmpty());
}

TEST_F(SwitcherControllerTest, TheMenuOpensAPinnedSessionWithoutAnyRow) {
    closeAllWindows();
    controller->showFromMenu();
    EXPECT_TRUE(controller->isVisible());
    EXPECT_TRUE(viewModel().isPinned.get());
    EXPECT_EQ(viewModel().selectedWindow(), std::nullopt);
    controller->handle(ModifierReleased{});
    EXPECT_TRUE(controller->isVisible());
    controller->handle(Confirm{});
    EXPECT_FALSE(controller->isVisible());
}

TEST_F(SwitcherControllerTest, TheMenuAsksForTrustAndThePinIsNotOfTheNextSession) {
    desktop.setTrusted(false);
    authorizer.refresh();
    desktop.settle();
    controller->showFromMenu();
    EXPECT_FALSE(controller->isVisible());
    EXPECT_FALSE(desktop.panel().isVisible);
    EXPECT_FALSE(tapSnapshot().isSwitcherVisible);
    EXPECT_EQ(desktop.trustPromptCount(), 1);
    desktop.setTrusted(true);
    authorizer.refresh();
    desktop.settle();
    controller->handle(Invoke{false});
    EXPECT_FALSE(viewModel().isPinned.get());
    EXPECT_TRUE(tapSnapshot().isHoldModeActive);
}

TEST_F(SwitcherControllerTest, PinningWithNothingSelectedPinsNoApplication) {
    closeAllWindows();
    controller->handle(Invoke{false});
    ASSERT_EQ(viewModel().selectedWindow(), std::nullopt);
    controller->handle(ToggleFavourite{});
    EXPECT_TRUE(controller->isVisible());
    EXPECT_TRUE(viewModel().isPinned.get());
    EXPECT_FALSE(tapSnapshot().isHoldModeActive);
    EXPECT_THAT(favourites.bundleIdentifiers().get(), IsEmpty());
}

TEST_F(SwitcherControllerTest, FollowsTheTriggerPreference) {
    for (const auto modifier : {SwitcherModifier::control, SwitcherModifier::command, SwitcherModifier::option}) {
        preferences.modifier.set(modifier);
        EXPECT_EQ(tapSnapshot().modifierFlag, flagMask(modifier));
    }
}

TEST_F(SwitcherControllerTest, ClosesWhenTrustIsLost) {
    controller->handle(Invoke{false});
    desktop.setTrusted(false);
    desktop.advance(2s);
    EXPECT_FALSE(controller->isVisible());
    EXPECT_FALSE(tapSnapshot().isSwitcherVisible);
}

TEST_F(SwitcherControllerTest, ClosesAfterThirtySecondsWithoutACommand) {
    controller->handle(Invoke{false});
    desktop.advance(29.999s);
    EXPECT_TRUE(controller->isVisible());
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
    desktop.advance(0.001s);
    EXPECT_FALSE(controller->isVisible());
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::standard, "ui", "Switcher idle watchdog fired; dismissing"}));
}

TEST_F(SwitcherControllerTest, EveryCommandKeepsTheWatchdogQuiet) {
    preferences.confirmOnModifierRelease.set(false);
    for (const SwitcherCommand& command :
         {SwitcherCommand(Invoke{false}), SwitcherCommand(Move{1}), SwitcherCommand(MoveVertical{1}),
          SwitcherCommand(MoveToEdge{false}), SwitcherCommand(SelectIndex{9}), SwitcherCommand(InsertText{"w"}),
          SwitcherCommand(DeleteBackward{}), SwitcherCommand(ClearQuery{}), SwitcherCommand(ToggleLayout{}),
          SwitcherCommand(ToggleFavourite{}), SwitcherCommand(ModifierReleased{})}) {
        controller->handle(Invoke{false});
        desktop.advance(20s);
        controller->handle(command);
        desktop.advance(29.999s);
        EXPECT_TRUE(controller->isVisible()) << command.index();
        desktop.advance(0.001s);
        EXPECT_FALSE(controller->isVisible()) << command.index();
    }
}

TEST_F(SwitcherControllerTest, NoWatchdogIsLeftBehind) {
    desktop.advance(1s);
    const auto timers = desktop.pendingTimerCount();
    controller->handle(Invoke{false});
    EXPECT_GT(desktop.pendingTimerCount(), timers);
    controller->handle(Cancel{});
    desktop.advance(1s);
    EXPECT_EQ(desktop.pendingTimerCount(), timers);
}

TEST_F(SwitcherControllerTest, TheChosenWindowIsAskedForBeforeTheNextTriggerOpensASession) {
    /// What is held back behind the trigger's release follows as soon as the tap hears of the end.
    class ImpatientTap final : public KeyboardTap {
    public:
        explicit ImpatientTap(std::function<void()> onClosed) : onClosed_(std::move(onClosed)) {}
        void setEnabled(bool) override {}
        [[nodiscard]] bool isEnabled() const override { return true; }
        void setTrigger(SwitcherModifier) override {}
        void openSession(TapSession) override {}
        void closeSession(TapSession) override { onClosed_(); }
        [[nodiscard]] bool hasGivenUp(TapSession) const override { return false; }

    private:
        std::function<void()> onClosed_;
    };
    std::vector<std::string> callsBefore;
    bool wasVisible = true;
    ImpatientTap tap([&] {
        platform.mainLoop.post([&] {
            wasVisible = desktop.panel().isVisible;
            callsBefore = desktop.takeControlCalls();
            controller->handle(Invoke{false});
        });
    });
    monitor.state().setTapPort(&tap);
    controller->handle(Invoke{false});
    controller->handle(ModifierReleased{});
    EXPECT_FALSE(controller->isVisible());
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty()) << "the panel is gone before the activation starts";
    desktop.settle();
    EXPECT_FALSE(wasVisible);
    EXPECT_THAT(callsBefore, Contains("raise 2"));
    EXPECT_TRUE(controller->isVisible());
    monitor.state().setTapPort(nullptr);
}

TEST_F(SwitcherControllerTest, AnActivatedWindowLeadsTheList) {
    controller->activator().onActivated = [this](const AppWindow& window) { controller->noteActivated(window); };
    // No focus change tells of it: the activator's report alone does.
    desktop.setIgnoresActivation(browser, true);
    controller->handle(Invoke{false});
    controller->handle(SelectIndex{4});
    desktop.advance(1s);
    EXPECT_EQ(windowIndex.windows().get().front().id, 1U);
    desktop.advance(1s);
    EXPECT_EQ(windowIndex.windows().get().front().id, 4U);
}

class SessionWatchdogTest : public ::testing::Test {
protected:
    SimulatedDesktop desktop;
    int ends = 0;
    SessionWatchdog watchdog{desktop.platform().mainLoop, [this] { ++ends; }};
};

TEST_F(SessionWatchdogTest, FiresOnceAfterHalfAMinuteWithoutARestart) {
    EXPECT_EQ(SessionWatchdog::interval, Seconds(30));
    watchdog.restart();
    desktop.advance(29s);
    watchdog.restart();
    desktop.advance(29s);
    EXPECT_EQ(ends, 0);
    desktop.advance(1s);
    EXPECT_EQ(ends, 1);
    desktop.advance(60s);
    EXPECT_EQ(ends, 1);
}

TEST_F(SessionWatchdogTest, AStoppedOneDoesNotFire) {
    watchdog.restart();
    watchdog.stop();
    desktop.advance(60s);
    EXPECT_EQ(ends, 0);
}

}  // namespace
}  // namespace ferrowyn
