#include "input/switcher_controller.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/input/switcher_controller_fixture.h"

namespace ferrowyn {
namespace {

using namespace command;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(PointerActivityGateTest, AdmitsEveryHoverAtFirst) {
    PointerActivityGate gate;
    EXPECT_TRUE(gate.admitsHover({5, 5}));
    EXPECT_TRUE(gate.admitsHover({5, 5}));
}

TEST(PointerActivityGateTest, IgnoresHoversWithinThreePointsOfTheAnchor) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    EXPECT_FALSE(gate.admitsHover({100, 100}));
    EXPECT_FALSE(gate.admitsHover({103, 100})) << "exactly three points is not more than three";
    EXPECT_FALSE(gate.admitsHover({102, 102}));
    EXPECT_EQ(gate.anchor, (Point{100, 100}));
}

TEST(PointerActivityGateTest, MeasuresTheDistanceInAStraightLine) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    EXPECT_FALSE(gate.admitsHover({98, 98}));
    EXPECT_TRUE(gate.admitsHover({97.8, 97.8}));
}

TEST(PointerActivityGateTest, StaysLiveOnceThePointerMovedAway) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    EXPECT_TRUE(gate.admitsHover({103.1, 100}));
    EXPECT_FALSE(gate.anchor.has_value());
    EXPECT_TRUE(gate.admitsHover({100, 100})) << "back at the anchor, which is gone";
}

TEST(PointerActivityGateTest, IsArmedAnewByEachKey) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    gate.arm({110, 100});
    EXPECT_FALSE(gate.admitsHover({110, 101}));
    EXPECT_TRUE(gate.admitsHover({100, 100}));
}

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
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("settings accessibility"));
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
