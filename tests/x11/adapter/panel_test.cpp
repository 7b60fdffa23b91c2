#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <algorithm>
#include <array>
#include <cstring>

#include "platform/x11/xcb_reply.h"
#include "tests/x11/adapter/panel_fixture.h"

namespace ferrowyn::x11test {
namespace {

using testing::Contains;
using testing::Not;

/// 640 x 300 points, its upper left corner 100 right of and 50 below the screen's, on a screen 800 points high.
constexpr Rect frame{100, 450, 640, 300};
constexpr TestDesktop::Place place{100, 50, 640, 300};

TEST(PanelTest, AppearsInItsPlaceAndLeavesTheFocusAlone) {
    PanelRig rig;
    const TestWindow window(rig.server.display(), {.title = "In front"});
    ASSERT_TRUE(rig.desktop.waitForActiveWindow(window.id()));

    rig.show(frame);

    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.desktop.visiblePanel().has_value(); }));
    const auto panel = *rig.desktop.visiblePanel();
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.settle();
    EXPECT_EQ(rig.desktop.placeOf(panel), place);
    EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1));
    EXPECT_EQ(rig.desktop.activeWindow(), window.id());
    EXPECT_THAT(rig.desktop.clientList(), Not(Contains(panel)));
    EXPECT_TRUE(rig.desktop.hasState(panel, "_NET_WM_STATE_SKIP_TASKBAR"));

    rig.panel->orderOut();
    EXPECT_TRUE(PanelRig::runUntil([&] { return !rig.desktop.visiblePanel().has_value(); }));
    EXPECT_EQ(rig.desktop.activeWindow(), window.id());
}

TEST(PanelTest, ShowsThePreparedFrameBeforeTheToolkitHasDrawnAnything) {
    PanelRig rig;
    rig.panel->prepare(frame);
    const int paintsBefore = rig.content->view().paints;
    rig.show(frame);
    // The loop has not run since: what is there was drawn by the server.
    EXPECT_EQ(rig.content->view().paints, paintsBefore);
    ASSERT_TRUE(rig.desktop.waitForPanel(true));
    EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1));
    rig.settle();
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > paintsBefore; }));
    rig.settle();
    EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1)) << "the toolkit draws the same picture";
}

TEST(PanelTest, ShowsWhatTheModelHoldsWhenThePreparedFrameHasGoneStale) {
    PanelRig rig;
    rig.panel->prepare(frame);
    rig.content->model = QColor(0x33CC66);
    rig.show(frame);
    ASSERT_TRUE(rig.desktop.waitForPanel(true));
    EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1));
}

TEST(PanelTest, DrawsAFrameOfAnotherExtentThanThePreparedOne) {
    PanelRig rig;
    rig.panel->prepare(frame);
    rig.show({100, 550, 640, 200});
    ASSERT_TRUE(rig.desktop.waitForPanel(true));
    EXPECT_EQ(rig.desktop.pixels({100, 50, 640, 200}), rig.expectedPixels(640, 200, 1));
}

TEST(PanelTest, ShowsAgainAndAgain) {
    PanelRig rig;
    for (int round = 0; round < 5; ++round) {
        rig.content->model = QColor::fromRgb(0x102030U * static_cast<unsigned>(round + 1));
        rig.panel->prepare(frame);
        rig.show(frame);
        ASSERT_TRUE(rig.desktop.waitForPanel(true)) << round;
        EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1)) << round;
        rig.settle();
        rig.panel->orderOut();
        ASSERT_TRUE(PanelRig::runUntil([&] { return !rig.desktop.visiblePanel().has_value(); })) << round;
        rig.settle();
    }
}

TEST(PanelTest, ShowsAgainInTheSameTurnOfTheLoop) {
    PanelRig rig;
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.panel->orderOut();
    rig.content->model = QColor(0x3366CC);
    rig.show(frame);
    ASSERT_TRUE(rig.desktop.waitForPanel(true));
    rig.settle();
    EXPECT_TRUE(rig.desktop.visiblePanel().has_value()) << "the end of the first showing does not hide the second";
    EXPECT_TRUE(rig.content->view().isVisible());
    EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1));
}

TEST(PanelTest, StaysHiddenWhenAManagerMapsItLate) {
    PanelRig rig;
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.desktop.visiblePanel().has_value(); }));
    const auto window = *rig.desktop.visiblePanel();
    rig.panel->orderOut();
    rig.settle();
    ASSERT_FALSE(rig.desktop.visiblePanel().has_value());
    // As metacity does when it handles the panel's appearance after the panel has gone.
    xcb_map_window(rig.desktop.connection(), window);
    ASSERT_TRUE(rig.desktop.waitForPanel(true)) << "the test's own request";
    EXPECT_TRUE(PanelRig::runUntil([&] { return !rig.desktop.visiblePanel().has_value(); }));
    rig.show(frame);
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.desktop.visiblePanel().has_value(); }));
    rig.settle();
    EXPECT_TRUE(rig.desktop.visiblePanel().has_value()) << "its next appearance is its own";
}

TEST(PanelTest, ChangesItsExtentDownwardWhileItIsShown) {
    PanelRig rig;
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.panel->setFrame({100, 350, 640, 400});
    ASSERT_TRUE(PanelRig::runUntil([&] {
        return rig.desktop.pixels({100, 50, 640, 400}) == rig.expectedPixels(640, 400, 1);
    }));
    EXPECT_EQ(rig.desktop.placeOf(*rig.desktop.visiblePanel()), (TestDesktop::Place{100, 50, 640, 400}));
}

TEST(PanelTest, GoesFromOneWholePictureToTheNextWhenItsExtentChanges) {
    PanelRig rig;
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.settle();
    const auto panel = *rig.desktop.visiblePanel();
    for (const Rect next : {Rect{40, 250, 760, 500}, Rect{100, 550, 640, 200}, Rect{100, 350, 640, 400}}) {
        rig.content->model = rig.content->model.darker(130);
        rig.panel->setFrame(next);
        const TestDesktop::Place expected{static_cast<int>(next.x), 50, static_cast<int>(next.width),
                                          static_cast<int>(next.height)};
        // The loop has not run since, so whatever is seen in the new place has not waited for the toolkit.
        const Deadline deadline(patience);
        while (rig.desktop.placeOf(panel) != expected) {
            ASSERT_FALSE(deadline.hasPassed()) << next.width;
        }
        EXPECT_EQ(rig.desktop.pixels(expected), rig.expectedPixels(expected.width, expected.height, 1)) << next.width;

        const int paintsBefore = rig.content->view().paints;
        ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > paintsBefore; }));
        rig.settle();
        EXPECT_EQ(rig.content->view().size(), QSize(expected.width, expected.height));
        EXPECT_EQ(rig.desktop.placeOf(panel), expected) << "the toolkit has followed, not led";
        EXPECT_EQ(rig.desktop.pixels(expected), rig.expectedPixels(expected.width, expected.height, 1)) << next.width;
    }
}

TEST(PanelTest, CoversAFullScreenWindowAndOneThatComesLater) {
    PanelRig rig;
    const TestWindow early(rig.server.display(), {.title = "Film", .states = {"_NET_WM_STATE_FULLSCREEN"}});
    ASSERT_TRUE(rig.desktop.waitForActiveWindow(early.id()));
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.desktop.pixel(110, 60) == 0xCC3366; }));

    const TestWindow late(rig.server.display(),
                          {.title = "Another", .states = {"_NET_WM_STATE_FULLSCREEN"}, .colour = 0x445566});
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.desktop.activeWindow() == late.id(); }));
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.desktop.pixel(5, 5) == 0x445566; })) << "the window is full screen";
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.desktop.pixel(110, 60) == 0xCC3366; }));
}

TEST(PanelTest, SurvivesTheWindowManager) {
    PanelRig rig;
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.desktop.visiblePanel().has_value(); }));
    rig.manager = std::make_unique<WindowManagerProcess>(rig.server, "openbox", true);
    rig.settle();
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.desktop.pixel(110, 60) == 0xCC3366; }));
    EXPECT_THAT(rig.desktop.clientList(), testing::IsEmpty());
}

TEST(PanelTest, BecomesTranslucentWithACompositorAndOpaqueWithoutLive) {
    PanelRig rig;
    EXPECT_FALSE(rig.compositor->isRunning());
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.desktop.visiblePanel().has_value(); }));
    EXPECT_FALSE(rig.content->isTranslucent);

    {
        ChildProcess compositor({.command = {"picom", "--backend", "xrender", "--config", "/dev/null"},
                                 .environment = rig.server.clientEnvironment(),
                                 .inheritedDescriptor = std::nullopt});
        ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->isTranslucent; }));
        EXPECT_TRUE(PanelRig::runUntil([&] { return rig.desktop.pixel(110, 60) == 0xCC3366; }));
        // Only a window that is as deep as that has anything for a compositor to blend.
        const auto panel = rig.desktop.visiblePanel();
        ASSERT_TRUE(panel.has_value());
        const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(
            rig.desktop.connection(), xcb_get_geometry(rig.desktop.connection(), *panel), nullptr));
        ASSERT_NE(geometry, nullptr);
        EXPECT_EQ(geometry->depth, 32);
    }
    ASSERT_TRUE(PanelRig::runUntil([&] { return !rig.content->isTranslucent; }));
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.desktop.pixels(place) == rig.expectedPixels(640, 300, 1); }));
}

TEST(PanelTest, AClickElsewhereIsToldAndStillReachesTheWindowBelow) {
    PanelRig rig;
    TestWindow below(rig.server.display(), {.title = "Below", .x = 50, .y = 450, .width = 600, .height = 300});
    ASSERT_TRUE(rig.desktop.waitForActiveWindow(below.id()));
    int clicks = 0;
    const auto subscription = rig.pointer->observeClicksElsewhere([&] {
        ++clicks;
        rig.panel->orderOut();
    });
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.settle();

    rig.input.movePointer(200, 600);
    rig.input.pressButton(4);
    rig.input.releaseButton(4);
    rig.settle();
    EXPECT_EQ(clicks, 0) << "a turn of the wheel is no click";

    (void)below.takeInput();
    rig.input.click(200, 600);
    ASSERT_TRUE(PanelRig::runUntil([&] { return clicks == 1; }));
    EXPECT_TRUE(PanelRig::runUntil([&] { return below.takeInput().buttonPresses > 0; }));
    EXPECT_TRUE(PanelRig::runUntil([&] { return !rig.desktop.visiblePanel().has_value(); }));

    rig.input.click(220, 620);
    rig.settle();
    EXPECT_EQ(clicks, 1) << "nobody listens while the panel is hidden";
}

TEST(PanelTest, AClickInsideReachesTheContentOnlyAndMovesThePointersPlace) {
    PanelRig rig;
    int clicks = 0;
    const auto subscription = rig.pointer->observeClicksElsewhere([&] { ++clicks; });
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.settle();
    EXPECT_EQ(rig.context.lastUserTime.load(), 0U);
    rig.input.click(150, 120);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().presses == 1; }));
    EXPECT_NE(rig.context.lastUserTime.load(), 0U) << "an activation that the click asks for is the user's";
    rig.input.movePointer(151, 121);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.pointer->location() == Point{151, 679}; }));
    EXPECT_GT(rig.content->view().moves, 0);
    rig.input.pressButton(5);
    rig.input.releaseButton(5);
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.content->view().wheelSteps == 1; }));
    rig.settle();
    EXPECT_EQ(clicks, 0);
    EXPECT_TRUE(rig.desktop.visiblePanel().has_value());
}

/// Sends an event of this type, in its own struct, straight to a window.
template <typename Event>
void sendTo(const TestDesktop& desktop, xcb_window_t window, std::uint8_t type, Event event) {
    event.response_type = type;
    std::array<char, 32> bytes{};
    std::memcpy(bytes.data(), &event, std::min(sizeof event, bytes.size()));
    xcb_send_event(desktop.connection(), 0, window, XCB_EVENT_MASK_NO_EVENT, bytes.data());
    xcb_flush(desktop.connection());
}

TEST(PanelTest, WhatOtherClientsSendItLeavesItAsItIs) {
    PanelRig rig;
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.settle();
    const auto panel = *rig.desktop.visiblePanel();

    xcb_client_message_event_t close{};
    close.format = 32;
    close.window = panel;
    close.type = rig.desktop.atom("WM_PROTOCOLS");
    close.data.data32[0] = rig.desktop.atom("WM_DELETE_WINDOW");
    sendTo(rig.desktop, panel, XCB_CLIENT_MESSAGE, close);
    xcb_configure_notify_event_t elsewhere{};
    elsewhere.event = panel;
    elsewhere.window = panel;
    elsewhere.x = 900;
    elsewhere.y = 700;
    elsewhere.width = 20;
    elsewhere.height = 10;
    sendTo(rig.desktop, panel, XCB_CONFIGURE_NOTIFY, elsewhere);
    xcb_button_press_event_t click{};
    click.detail = 1;
    click.root = rig.desktop.root();
    click.event = panel;
    click.root_x = 150;
    click.root_y = 120;
    click.event_x = 50;
    click.event_y = 70;
    click.same_screen = 1;
    sendTo(rig.desktop, panel, XCB_BUTTON_PRESS, click);
    sendTo(rig.desktop, panel, XCB_BUTTON_RELEASE, click);
    sendTo(rig.desktop, panel, XCB_MOTION_NOTIFY, click);
    rig.settle();
    // A real click is handled after all that.
    rig.input.click(150, 120);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().presses > 0; }));
    rig.settle();
    EXPECT_EQ(rig.content->view().presses, 1);
    EXPECT_TRUE(rig.content->view().isVisible());
    EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1));

    // Nor does it stay behind for the next time.
    rig.panel->orderOut();
    ASSERT_TRUE(PanelRig::runUntil([&] { return !rig.desktop.visiblePanel().has_value(); }));
    rig.settle();
    rig.content->model = QColor(0x33CC66);
    const int paintsBefore = rig.content->view().paints;
    rig.show(frame);
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > paintsBefore; }));
    rig.settle();
    EXPECT_EQ(rig.desktop.pixels(place), rig.expectedPixels(640, 300, 1));
    EXPECT_EQ(rig.content->view().size(), QSize(640, 300));
    EXPECT_EQ(rig.content->view().mapToGlobal(QPoint()), QPoint(100, 50));
    rig.input.click(160, 130);
    EXPECT_TRUE(PanelRig::runUntil([&] { return rig.content->view().presses == 2; }));
}

TEST(PanelTest, IsSharpAtTwiceTheScale) {
    PanelRig rig({.scale = "2"});
    EXPECT_EQ(rig.screens->all().front().frame, (Rect{0, 0, 640, 400}));
    const Rect half{50, 200, 320, 150};
    rig.panel->prepare(half);
    rig.show(half);
    ASSERT_TRUE(rig.desktop.waitForPanel(true));
    const TestDesktop::Place pixels{100, 100, 640, 300};
    EXPECT_EQ(rig.desktop.placeOf(*rig.desktop.visiblePanel()), pixels);
    EXPECT_EQ(rig.desktop.pixels(pixels), rig.expectedPixels(640, 300, 2));
    ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; }));
    rig.settle();
    EXPECT_EQ(rig.desktop.pixels(pixels), rig.expectedPixels(640, 300, 2));
}

TEST(PanelTest, KeepsItsPixelsAtFractionalScales) {
    for (const char* const scale : {"1.25", "1.5"}) {
        PanelRig rig({.scale = scale});
        const double factor = std::stod(scale);
        const Rect somewhere{41, 101, 641, 189};
        rig.panel->prepare(somewhere);
        rig.show(somewhere);
        ASSERT_TRUE(rig.desktop.waitForPanel(true)) << scale;
        const auto shown = rig.desktop.placeOf(*rig.desktop.visiblePanel());
        ASSERT_TRUE(PanelRig::runUntil([&] { return rig.content->view().paints > 0; })) << scale;
        rig.settle();
        EXPECT_EQ(rig.desktop.placeOf(*rig.desktop.visiblePanel()), shown) << scale << ": the toolkit moved it";
        EXPECT_EQ(shown->width, std::lround(641 * factor)) << scale;
        EXPECT_EQ(shown->height, std::lround(189 * factor)) << scale;
        EXPECT_EQ(rig.desktop.pixel(shown->x, shown->y), borderColour) << scale;
        EXPECT_EQ(rig.desktop.pixel(shown->x + shown->width - 1, shown->y + shown->height - 1), borderColour) << scale;
    }
}

TEST(PanelTest, AssistiveProgramsSeeItExactlyWhileItIsShown) {
    PanelRig rig;
    auto* const interface = QAccessible::queryAccessibleInterface(&rig.content->view());
    ASSERT_NE(interface, nullptr);
    EXPECT_TRUE(interface->state().invisible);
    rig.show(frame);
    EXPECT_FALSE(interface->state().invisible);
    rig.panel->orderOut();
    EXPECT_TRUE(PanelRig::runUntil([&] { return bool(interface->state().invisible); }));
}

}  // namespace
}  // namespace ferrowyn::x11test
