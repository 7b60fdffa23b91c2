#include "input/switcher_controller.h"

#include <optional>

#include "input/hot_key_monitor.h"
#include "input/switcher_panel.h"
#include "input/window_activator.h"
#include "inventory/window_index.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/screens.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/user_defaults.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/icon_provider.h"
#include "services/preferences.h"
#include "tests/input/print_log_line.h"
#include "tests/input/recording_event_tap.h"
#include "tests/input/spy_panel.h"
#include "tests/input/stub_panel_content.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using namespace command;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using LogLine = SimulatedDesktop::LogLine;

constexpr Pid editor = 100;
constexpr Pid browser = 200;

/// Five windows, 1 to 5 in the order of their use, on the first screen; 1, 2 and 3 are the editor's.
class SwitcherControllerTest : public ::testing::Test {
protected:
    SwitcherControllerTest()
        : spy(desktop.platform().panel), platform(replacedIn(desktop.platform(), {.panel = &spy})) {
        desktop.launch({.pid = editor, .bundleIdentifier = "org.editor", .localizedName = "Editor"});
        desktop.launch({.pid = browser, .bundleIdentifier = "org.browser", .localizedName = "Browser"});
        for (const WindowId id : {5U, 4U, 3U, 2U, 1U}) {
            desktop.openWindow({.id = id, .pid = id > 3 ? browser : editor, .title = "Window " + std::to_string(id)});
        }
        desktop.setFrontmost(editor);
        desktop.movePointer({700, 400});
        preferences.showShortcutHints.set(false);
        auto viewModel = std::make_unique<SwitcherViewModel>(
            preferences.sessionSettings(), iconProvider, favourites, [this] { return desktop.frontmostPid(); },
            [this](std::function<void()> task) { platform.mainLoop.post(std::move(task)); });
        viewModel->bind(windowIndex.windows(), authorizer.status());
        controller.emplace(platform,
                           SwitcherController::Parts{.panel = std::make_unique<SwitcherPanel>(spy),
                                                     .viewModel = std::move(viewModel),
                                                     .activator = std::make_unique<WindowActivator>(platform),
                                                     .preferences = preferences,
                                                     .favourites = favourites,
                                                     .windowIndex = windowIndex,
                                                     .authorizer = authorizer,
                                                     .hotKeyMonitor = monitor},
                           stubContentFactory(content));
        setUpCalls = desktop.panel().calls;
        windowIndex.start();
        desktop.settle();
        // The observers' own notifications are history.
        desktop.advance(1s);
        forgetLog();
        forgetCalls();
    }

    void forgetLog() { static_cast<void>(desktop.takeLog()); }
    void forgetCalls() { static_cast<void>(desktop.takeControlCalls()); }
    SwitcherViewModel& viewModel() { return controller->viewModel(); }
    int selection() { return viewModel().selectedIndex.get(); }
    std::vector<WindowId> shownWindows() {
        std::vector<WindowId> ids;
        for (const auto& row : viewModel().rows.get()) {
            ids.push_back(row.window->id);
        }
        return ids;
    }
    AppWindow rowWindow(std::size_t row) { return viewModel().rows.get().at(row).window; }
    TapState::Snapshot tapSnapshot() { return monitor.state().snapshot(); }
    /// A tap that is told what the controller passes on.
    std::shared_ptr<RecordingEventTap> record() {
        auto tap = std::make_shared<RecordingEventTap>(monitor.state());
        monitor.state().setTapPort(tap);
        return tap;
    }
    void closeAllWindows() {
        for (const WindowId id : {1U, 2U, 3U, 4U, 5U}) {
            desktop.closeWindow(id);
        }
        desktop.advance(1s);
    }

    SimulatedDesktop desktop;
    SpyPanel spy;
    Platform platform;
    Preferences preferences{platform.userDefaults};
    AccessibilityAuthorizer authorizer{platform};
    IconProvider iconProvider{platform.icons, platform.workspace};
    WindowIndex windowIndex{platform};
    HotKeyMonitor monitor{platform, SwitcherModifier::option};
    FavouritesStore favourites{platform.userDefaults, platform.workspace};
    SwitcherContentCallbacks content;
    std::optional<SwitcherController> controller;
    std::vector<std::string> setUpCalls;
};

// --- opening and closing
// ----------------------------------------------------------------------------------------------

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
    const auto tap = record();
    controller->handle(Invoke{false});
    EXPECT_THAT(tap->sessions, ElementsAre(RecordingEventTap::SessionCall{true, true, true}));
    controller->handle(Cancel{});
    EXPECT_EQ(tap->sessions.back(), (RecordingEventTap::SessionCall{false, false, false}));
}

TEST_F(SwitcherControllerTest, EveryWayOutOfASessionGivesTheKeyboardBack) {
    const auto tap = record();
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

// --- confirming
// -------------------------------------------------------------------------------------------------------

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

// --- pointer
// ----------------------------------------------------------------------------------------------------------

TEST_F(SwitcherControllerTest, AHoverRightAfterAKeyDoesNotSelect) {
    controller->handle(Invoke{false});
    content.onHover(3);
    EXPECT_EQ(selection(), 1);
    desktop.movePointer({703, 400});
    content.onHover(3);
    EXPECT_EQ(selection(), 1) << "three points are not more than three";
    desktop.movePointer({703.1, 400});
    content.onHover(3);
    EXPECT_EQ(selection(), 3);
    EXPECT_FALSE(viewModel().isPinned.get());
    content.onHover(0);
    EXPECT_EQ(selection(), 0) << "the pointer is live now";
    controller->handle(Invoke{false});
    content.onHover(4);
    EXPECT_EQ(selection(), 1) << "until the next key";
}

TEST_F(SwitcherControllerTest, AHoverOverNoRowSelectsNothing) {
    controller->handle(Invoke{false});
    desktop.movePointer({0, 0});
    content.onHover(-1);
    content.onHover(5);
    EXPECT_EQ(selection(), 1);
}

TEST_F(SwitcherControllerTest, CommandsThatDriveNoSelectionLeaveThePointerAlone) {
    controller->handle(Invoke{false});
    desktop.movePointer({0, 0});
    content.onHover(2);
    controller->handle(ToggleLayout{});
    controller->handle(ToggleFavourite{});
    controller->handle(ModifierReleased{});
    content.onHover(3);
    EXPECT_EQ(selection(), 3);
    for (const SwitcherCommand& command :
         {SwitcherCommand(Invoke{}), SwitcherCommand(Move{0}), SwitcherCommand(MoveVertical{0}),
          SwitcherCommand(MoveToEdge{true}), SwitcherCommand(SelectIndex{9}), SwitcherCommand(InsertText{"w"}),
          SwitcherCommand(DeleteBackward{}), SwitcherCommand(ClearQuery{})}) {
        controller->handle(command);
        const int before = selection();
        content.onHover(before == 2 ? 3 : 2);
        EXPECT_EQ(selection(), before) << command.index();
        desktop.movePointer({platform.pointer.location().x + 10, 0});
        content.onHover(2);
        EXPECT_EQ(selection(), 2) << command.index();
    }
}

TEST_F(SwitcherControllerTest, AClickElsewhereClosesAndOneWhileHiddenDoesNothing) {
    const auto callsBefore = desktop.panel().calls.size();
    desktop.clickElsewhere();
    EXPECT_EQ(desktop.panel().calls.size(), callsBefore);
    controller->handle(Invoke{false});
    desktop.clickElsewhere();
    EXPECT_FALSE(controller->isVisible());
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

TEST_F(SwitcherControllerTest, AFavouriteButtonSelectsPinsAndToggles) {
    controller->handle(Invoke{false});
    content.onToggleFavourite(rowWindow(3));
    EXPECT_EQ(viewModel().selectedWindow()->id, 4U);
    EXPECT_TRUE(viewModel().isPinned.get());
    EXPECT_THAT(favourites.bundleIdentifiers().get(), ElementsAre("org.browser"));
}

TEST_F(SwitcherControllerTest, ThePermissionButtonClosesAndOpensTheSettings) {
    controller->handle(Invoke{false});
    content.onRequestPermissions();
    EXPECT_FALSE(controller->isVisible());
    EXPECT_THAT(desktop.takeControlCalls(),
                ElementsAre("open x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"));
}

TEST_F(SwitcherControllerTest, ContentThatOutlivesItReachesNobody) {
    controller->handle(Invoke{false});
    const AppWindow window = rowWindow(0);
    controller.reset();
    content.onActivate(window);
    content.onHover(0);
    content.onToggleFavourite(window);
    content.onRequestPermissions();
    desktop.clickElsewhere();
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

// --- size and place
// ---------------------------------------------------------------------------------------------------

TEST_F(SwitcherControllerTest, OpensAtItsPlaceWithTheSizeOfItsRows) {
    controller->handle(Invoke{false});
    // Five rows: 5 × 52 + 4 + 72; full height 548 on a visible frame of 1440 × 875.
    EXPECT_EQ(desktop.panel().frame, (Rect{400, 782 - 336, 640, 336}));
}

TEST_F(SwitcherControllerTest, HasTheHeightOfTheEmptyStateWithoutRows) {
    closeAllWindows();
    controller->handle(Invoke{false});
    EXPECT_EQ(desktop.panel().frame.width, 640);
    EXPECT_EQ(desktop.panel().frame.height, 188);
    controller->dismiss();
    preferences.showShortcutHints.set(true);
    preferences.layout.set(SwitcherLayout::grid);
    controller->handle(Invoke{false});
    EXPECT_EQ(desktop.panel().frame.width, 760);
    EXPECT_EQ(desktop.panel().frame.height, 222);
}

TEST_F(SwitcherControllerTest, OpensOnTheScreenOfThePointer) {
    desktop.setScreens({{{0, 0, 1440, 900}, {0, 0, 1440, 875}}, {{1440, 0, 1000, 900}, {1440, 0, 1000, 875}}});
    desktop.movePointer({1500, 10});
    controller->handle(Invoke{false});
    EXPECT_EQ(desktop.panel().frame.x, 1440 + 500 - 320);
}

TEST_F(SwitcherControllerTest, TheMenuOpensItOnTheScreenThatThePointerIsOnNow) {
    desktop.setScreens({{{0, 0, 1440, 900}, {0, 0, 1440, 875}}, {{1440, 0, 1000, 900}, {1440, 0, 1000, 875}}});
    desktop.movePointerUnnoticed({1500, 10});
    controller->showFromMenu();
    EXPECT_EQ(desktop.panel().frame.x, 1440 + 500 - 320);
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

TEST(SwitcherPanelTest, HasATopEdgeDuringASessionOnly) {
    SimulatedDesktop desktop;
    SwitcherPanel panel(desktop.platform().panel);
    panel.install(std::make_unique<StubPanelContent>());
    EXPECT_EQ(panel.sessionTopY(), std::nullopt);
    panel.show({.frame = {400, 200, 640, 300}, .topY = 500});
    EXPECT_EQ(panel.sessionTopY(), 500);
    panel.refit({400, 250, 640, 250});
    EXPECT_EQ(panel.sessionTopY(), 500);
    panel.hide();
    EXPECT_EQ(panel.sessionTopY(), std::nullopt);
}

TEST_F(SwitcherControllerTest, KeepsItsTopEdgeWhileTheRowsChange) {
    controller->handle(Invoke{false});
    const double top = desktop.panel().frame.maxY();
    controller->handle(InsertText{"Window 4"});
    desktop.settle();
    EXPECT_EQ(desktop.panel().frame, (Rect{400, top - 124, 640, 124}));
    controller->handle(ClearQuery{});
    desktop.settle();
    EXPECT_EQ(desktop.panel().frame, (Rect{400, top - 336, 640, 336}));
}

TEST_F(SwitcherControllerTest, FollowsTheLayoutWhileVisible) {
    controller->handle(Invoke{false});
    const double top = desktop.panel().frame.maxY();
    controller->handle(ToggleLayout{});
    desktop.settle();
    EXPECT_EQ(desktop.panel().frame, (Rect{400, top - (336 + 2 * 28), 640, 336 + 2 * 28}));
    controller->handle(ToggleLayout{});
    desktop.settle();
    EXPECT_EQ(desktop.panel().frame, (Rect{340, top - 176, 760, 176}));
}

TEST_F(SwitcherControllerTest, DoesNotTouchTheFrameWhenTheSizeStays) {
    controller->handle(Invoke{false});
    desktop.settle();
    const auto calls = desktop.panel().calls.size();
    controller->handle(Invoke{false});
    desktop.setTitle(1, "Renamed");
    desktop.advance(1s);
    EXPECT_EQ(desktop.panel().calls.size(), calls);
}

TEST_F(SwitcherControllerTest, DoesNotMoveWhileHidden) {
    const auto calls = desktop.panel().calls.size();
    preferences.layout.set(SwitcherLayout::grid);
    desktop.closeWindow(1);
    desktop.advance(1s);
    EXPECT_EQ(desktop.panel().calls.size(), calls);
}

// --- what it follows
// --------------------------------------------------------------------------------------------------

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
    class ImpatientTap final : public EventTap {
    public:
        explicit ImpatientTap(std::function<void()> onClosed) : onClosed_(std::move(onClosed)) {}
        void setEnabled(bool) override {}
        [[nodiscard]] bool isEnabled() const override { return true; }
        void invalidate() override {}
        void setTrigger(SwitcherModifier) override {}
        void setSessionOpen(bool isOpen) override {
            if (!isOpen) {
                onClosed_();
            }
        }

    private:
        std::function<void()> onClosed_;
    };
    std::vector<std::string> callsBefore;
    bool wasVisible = true;
    monitor.state().setTapPort(std::make_shared<ImpatientTap>([&] {
        platform.mainLoop.post([&] {
            wasVisible = desktop.panel().isVisible;
            callsBefore = desktop.takeControlCalls();
            controller->handle(Invoke{false});
        });
    }));
    controller->handle(Invoke{false});
    controller->handle(ModifierReleased{});
    EXPECT_FALSE(controller->isVisible());
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty()) << "the panel is gone before the activation starts";
    desktop.settle();
    EXPECT_FALSE(wasVisible);
    EXPECT_THAT(callsBefore, Contains("raise 2"));
    EXPECT_TRUE(controller->isVisible());
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

// --- preparing the next session
// ---------------------------------------------------------------------------------------

TEST_F(SwitcherControllerTest, PreparesTheFrameOfTheNextSession) {
    ASSERT_FALSE(spy.prepared.empty());
    const Rect prepared = spy.prepared.back();
    controller->handle(Invoke{false});
    EXPECT_EQ(desktop.panel().frame, prepared);
}

TEST_F(SwitcherControllerTest, PreparesOnceForABurstOfChanges) {
    spy.prepared.clear();
    preferences.maximumVisibleRows.set(4);
    preferences.favouritesFirst.set(false);
    favourites.toggle(windowIndex.windows().get().front());
    EXPECT_THAT(spy.prepared, IsEmpty());
    desktop.settle();
    EXPECT_EQ(spy.prepared.size(), 1U);
    EXPECT_EQ(spy.prepared.back().height, 4 * 52 + 3 + 72);
}

TEST_F(SwitcherControllerTest, PreparesWhenAnythingTheNextSessionShowsChanges) {
    const std::vector<std::function<void()>> changes = {
        [&] { preferences.includeMinimized.set(false); },
        [&] { preferences.includeOtherSpaces.set(false); },
        [&] { preferences.showActiveAppWindowsFirst.set(false); },
        [&] { preferences.favouritesFirst.set(false); },
        [&] { preferences.layout.set(SwitcherLayout::grid); },
        [&] { preferences.showShortcutHints.set(true); },
        [&] { preferences.maximumVisibleRows.set(5); },
        [&] { favourites.toggle(windowIndex.windows().get().front()); },
        [&] { windowIndex.noteActivated(3); },
        [&] { desktop.setScreenParametersChanged(); },
        [&] {
            desktop.setScreens({{{0, 0, 800, 600}, {0, 0, 800, 580}}});
        },
        [&] { preferences.modifier.set(SwitcherModifier::command); },
        [&] { content.onAppearanceChanged(); },
        [&] {
            controller->handle(Invoke{false});
            controller->handle(Cancel{});
        },
    };
    for (std::size_t change = 0; change < changes.size(); ++change) {
        spy.prepared.clear();
        changes[change]();
        desktop.advance(200ms);
        EXPECT_EQ(spy.prepared.size(), 1U) << change;
    }
}

TEST_F(SwitcherControllerTest, PreparesNothingDuringASessionOrWithoutTrust) {
    controller->handle(Invoke{false});
    desktop.settle();
    spy.prepared.clear();
    preferences.maximumVisibleRows.set(5);
    desktop.settle();
    EXPECT_THAT(spy.prepared, IsEmpty());
    controller->handle(Cancel{});
    desktop.setTrusted(false);
    desktop.advance(2s);
    spy.prepared.clear();
    preferences.maximumVisibleRows.set(6);
    desktop.settle();
    EXPECT_THAT(spy.prepared, IsEmpty());
    desktop.setTrusted(true);
    desktop.advance(1s);
    EXPECT_EQ(spy.prepared.size(), 1U) << "with trust, before anything else has changed";
}

}  // namespace
}  // namespace ferrowyn
