#include "platform/x11/x11_desktop_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
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
            windows[id - 1].process = static_cast<Pid>(id);
        }
        windows[dialog - 1].isTransient = true;
        model.apply(root(here), true, std::move(windows));
        notifications = model.notifications().subscribe([this](const X11AccessibilityNotification& told) {
            if (told.kind == AccessibilityNotification::focusedWindowChanged) {
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
    X11DesktopModel model{directory};
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

TEST_F(X11DesktopModelTest, WhoTakesTheUserToAnotherDesktopAgainIsNoThief) {
    X11WindowFacts elsewhere = *model.find(there);
    elsewhere.desktop = 1;
    auto onThatDesktop = root(there);
    onThatDesktop.currentDesktop = 1;
    model.expectActive(there, Path::acrossDesktops);
    model.apply(onThatDesktop, true, {elsewhere});
    auto back = root(neighbour);
    back.currentDesktop = 0;
    model.apply(back, true, {});
    EXPECT_THAT(stolenFrom, IsEmpty());
    EXPECT_THAT(focused, ElementsAre(there, neighbour));
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

/// Windows of one process, of which each says by its class which application it is of.
class X11DesktopModelApplicationsTest : public testing::Test {
protected:
    X11DesktopModelApplicationsTest() {
        model.apply(root(), true, {window(first, "Writer"), window(second, "Writer")});
        events = model.workspaceEvents().subscribe([this](const WorkspaceEvent& event) {
            if (event.application) {
                seen.emplace_back(event.kind, event.application->localizedName.value_or(""));
            }
        });
        notifications =
            model.notifications().subscribe([this](const X11AccessibilityNotification& told) { lastTold = told.pid; });
    }

    static constexpr xcb_window_t first = 1, second = 2;
    static constexpr Pid process = 100;
    static X11WindowFacts window(xcb_window_t id, const std::string& windowClass) {
        X11WindowFacts facts;
        facts.id = id;
        facts.process = process;
        facts.identity.wmClassName = windowClass;
        return facts;
    }
    static X11RootFacts root(std::vector<std::uint32_t> stacking = {first, second}) {
        X11RootFacts facts;
        facts.stacking = std::move(stacking);
        facts.activeWindow = first;
        return facts;
    }

    using Kind = WorkspaceEvent::Kind;
    X11ApplicationDirectory directory{[this](const X11ApplicationIdentity& identity) {
        return isInstalled && identity.wmClassName == "Calc"
                   ? std::optional(X11InstalledApplication{"calc", "Quartz", "/calc.desktop"})
                   : std::nullopt;
    }};
    bool isInstalled = false;
    X11DesktopModel model{directory};
    std::vector<std::pair<Kind, std::string>> seen;
    Pid lastTold = 0;
    Subscription events;
    Subscription notifications;
};

TEST_F(X11DesktopModelApplicationsTest, AWindowThatSaysSomethingElseIsAnotherApplicationThatIsActive) {
    model.apply(root(), true, {window(first, "Calc")});
    EXPECT_THAT(seen, ElementsAre(std::pair(Kind::didLaunch, "Calc"), std::pair(Kind::didActivate, "Calc")));
    const auto calc = model.frontmostPid();
    ASSERT_TRUE(calc.has_value());
    EXPECT_NE(calc, process);
    EXPECT_EQ(lastTold, calc);
    EXPECT_THAT(model.windowsOf(*calc), ElementsAre(first));
    EXPECT_THAT(model.windowsOf(process), ElementsAre(second));
    EXPECT_EQ(model.lastActiveOf(*calc), first);
    EXPECT_EQ(model.lastActiveOf(process), std::nullopt);
}

TEST_F(X11DesktopModelApplicationsTest, AnApplicationWhoseLastWindowBecomesAnotherHasEnded) {
    model.apply(root(), true, {window(first, "Calc")});
    seen.clear();
    model.apply(root(), true, {window(second, "Calc")});
    EXPECT_THAT(seen, ElementsAre(std::pair(Kind::didTerminate, "Writer")));
    EXPECT_FALSE(model.runningApplication(process).has_value());
}

TEST_F(X11DesktopModelApplicationsTest, AnApplicationEndsWithItsLastWindowAndNotWithItsProcess) {
    model.apply(root(), true, {window(first, "Calc")});
    seen.clear();
    model.apply(root({first}), true, {});
    EXPECT_THAT(seen, ElementsAre(std::pair(Kind::didTerminate, "Writer")));
    EXPECT_TRUE(model.runningApplication(*model.frontmostPid()).has_value());
}

TEST_F(X11DesktopModelApplicationsTest, AnApplicationThatEndsAndGetsADialogAtOnceHasBeenStartedAgain) {
    // Calc's dialog calls itself Writer, but is of Calc for as long as Calc's window is there.
    constexpr xcb_window_t calcsDialog = 3;
    auto dialogFacts = window(calcsDialog, "Writer");
    dialogFacts.transientFor = first;
    model.apply(root({first, second, calcsDialog}), true, {window(first, "Calc"), dialogFacts});
    ASSERT_THAT(model.windowsOf(process), ElementsAre(second));
    seen.clear();
    // Both windows go at once.
    auto rest = root({calcsDialog});
    rest.activeWindow = calcsDialog;
    model.apply(rest, true, {});
    ASSERT_THAT(model.windowsOf(process), ElementsAre(calcsDialog));
    EXPECT_THAT(seen, ElementsAre(std::pair(Kind::didTerminate, "Writer"), std::pair(Kind::didTerminate, "Writer"),
                                  std::pair(Kind::didLaunch, "Writer"), std::pair(Kind::didActivate, "Writer")));
}

TEST_F(X11DesktopModelApplicationsTest, AnInstalledDesktopFileMakesAnApplicationOfItsWindows) {
    model.apply(root(), true, {window(first, "Calc")});
    seen.clear();
    isInstalled = true;
    directory.forgetAll();
    model.noteInstalledApplicationsChanged();
    ASSERT_EQ(seen.size(), 3U);
    EXPECT_EQ(seen[0].first, Kind::didTerminate);
    EXPECT_EQ(seen[1], std::pair(Kind::didLaunch, std::string("Quartz")));
    EXPECT_EQ(seen[2], std::pair(Kind::didActivate, std::string("Quartz")));
    seen.clear();
    model.noteInstalledApplicationsChanged();
    EXPECT_THAT(seen, IsEmpty());
}

}  // namespace
}  // namespace ferrowyn
