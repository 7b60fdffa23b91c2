#include "platform/x11/x11_desktop_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Path = X11DesktopModel::Path;

constexpr xcb_window_t here = 1, there = 2, neighbour = 3, dialog = 4;

/// What a manager publishes while it takes the user from one desktop to a window on another, where it may focus a
/// window of its own choice first. Windows have the processes of their numbers.
class X11DesktopModelTest : public testing::Test {
protected:
    X11DesktopModelTest() {
        std::vector<X11WindowFacts> windows(4);
        for (xcb_window_t id = here; id <= dialog; ++id) {
            windows[id - 1].id = id;
            windows[id - 1].pid = static_cast<Pid>(id);
        }
        windows[dialog - 1].isTransient = true;
        model.apply(root(here), true, std::move(windows));
        notifications = model.notifications().subscribe([this](const X11AccessibilityNotification& told) {
            if (told.name == "AXFocusedWindowChanged") {
                focused.push_back(static_cast<xcb_window_t>(told.pid));
            }
        });
        focusThefts = model.focusThefts().subscribe([this](xcb_window_t window) { stolenFrom.push_back(window); });
    }

    static X11RootFacts root(xcb_window_t active) {
        X11RootFacts facts;
        facts.stacking = {here, there, neighbour, dialog};
        facts.activeWindow = active;
        return facts;
    }
    void becomesActive(xcb_window_t window) { model.apply(root(window), true, {}); }

    X11ApplicationDirectory directory{[](const auto&) { return std::nullopt; }};
    X11FocusHistory history;
    X11DesktopModel model{directory, history};
    std::vector<xcb_window_t> focused;
    std::vector<xcb_window_t> stolenFrom;
    Subscription notifications;
    Subscription focusThefts;
};

TEST_F(X11DesktopModelTest, WhatIsFocusedOnTheWayIsNotAnnounced) {
    model.expectActive(there, Path::onOneDesktop);
    becomesActive(neighbour);
    becomesActive(XCB_WINDOW_NONE);
    becomesActive(there);
    EXPECT_THAT(focused, ElementsAre(there));
}

TEST_F(X11DesktopModelTest, WhatIsFocusedOnTheWayIsAnnouncedIfItStays) {
    model.expectActive(there, Path::onOneDesktop);
    becomesActive(neighbour);
    model.stopExpectingActive();
    EXPECT_THAT(focused, ElementsAre(neighbour));
}

TEST_F(X11DesktopModelTest, OnOneDesktopWhatFollowsTheExpectedWindowIsTheUsersChoice) {
    model.expectActive(there, Path::onOneDesktop);
    becomesActive(there);
    becomesActive(neighbour);
    EXPECT_THAT(focused, ElementsAre(there, neighbour));
    EXPECT_THAT(stolenFrom, IsEmpty());
}

TEST_F(X11DesktopModelTest, AcrossDesktopsALateAnswerToAnOfferOfTheFocusIsATheft) {
    model.expectActive(there, Path::acrossDesktops);
    becomesActive(there);
    becomesActive(neighbour);
    EXPECT_THAT(stolenFrom, ElementsAre(there));
    becomesActive(there);
    EXPECT_THAT(focused, ElementsAre(there)) << "the thief was used by nobody";
}

TEST_F(X11DesktopModelTest, TheFocusIsClaimedBackOnce) {
    model.expectActive(there, Path::acrossDesktops);
    becomesActive(there);
    becomesActive(neighbour);
    becomesActive(there);
    becomesActive(neighbour);
    EXPECT_THAT(stolenFrom, ElementsAre(there));
    EXPECT_THAT(focused, ElementsAre(there, neighbour));
}

TEST_F(X11DesktopModelTest, AThiefThatKeepsTheFocusIsAnnouncedInTheEnd) {
    model.expectActive(there, Path::acrossDesktops);
    becomesActive(there);
    becomesActive(neighbour);
    model.stopExpectingActive();
    EXPECT_THAT(focused, ElementsAre(there, neighbour));
}

TEST_F(X11DesktopModelTest, ADialogMayHaveTheFocusOfItsWindow) {
    model.expectActive(there, Path::acrossDesktops);
    becomesActive(there);
    becomesActive(dialog);
    EXPECT_THAT(stolenFrom, IsEmpty());
}

TEST_F(X11DesktopModelTest, ASessionAfterATheftStartsFromTheWindowThatTheUserChose) {
    model.expectActive(there, Path::acrossDesktops);
    becomesActive(there);
    becomesActive(neighbour);
    model.startSessionFrom(neighbour);
    EXPECT_EQ(model.frontmostPid(), static_cast<Pid>(there));
    EXPECT_THAT(focused, ElementsAre(there));
}

}  // namespace
}  // namespace ferrowyn
