#include "platform/macos/mac_window_control.h"

#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

constexpr Pid notes = 501;
constexpr Seconds timeout{0.5};

class RecordingApplications final : public MacApplicationControl {
public:
    [[nodiscard]] bool isHidden(Pid pid) const override { return pid == hidden; }
    void unhide(Pid pid) override { calls.push_back("unhide " + std::to_string(pid)); }
    void activate(Pid pid) override { calls.push_back("activate " + std::to_string(pid)); }
    [[nodiscard]] bool isActive(Pid pid) const override { return pid == active; }

    std::vector<std::string> calls;
    Pid hidden = 0;
    Pid active = 0;
};

class MacWindowControlTest : public MacFixture {
protected:
    fake::ElementId app = accessibility.addApplication(notes);
    fake::ElementId window = accessibility.addWindow(notes, {.windowNumber = 77});
    AXElementRef handle = handleOf(window);
    RecordingApplications applications;
    MacWindowNumberLookup lookup;
    MacWindowControl control{applications, lookup, log};
};

TEST_F(MacWindowControlTest, AnApplicationThatTheSystemGivesNoHandleOfIsAskedNothing) {
    accessibility.refusesHandles = true;
    control.setMessagingTimeout(notes, timeout);
    control.setFocusedWindow(notes, handle);
    control.setFrontmost(notes);
    EXPECT_THAT(control.windowElements(notes), IsEmpty());
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

TEST_F(MacWindowControlTest, EachStepIsItsOwnCallWithinTheTimeoutOfItsElement) {
    control.setMessagingTimeout(notes, timeout);
    control.setMessagingTimeout(handle, timeout);
    control.unminimize(handle);
    control.raise(handle);
    control.setMain(handle);
    control.setFocused(handle);
    control.setFocusedWindow(notes, handle);
    control.setFrontmost(notes);
    EXPECT_THAT(accessibility.takeRequests(),
                ElementsAre("set AXMinimized to false of 2 within 0.5", "perform AXRaise of 2 within 0.5",
                            "set AXMain to true of 2 within 0.5", "set AXFocused to true of 2 within 0.5",
                            "set AXFocusedWindow to 2 of 1 within 0.5", "set AXFrontmost to true of 1 within 0.5"));
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(MacWindowControlTest, TheApplicationItselfIsAskedToUnhideAndActivate) {
    applications.hidden = notes;
    EXPECT_TRUE(control.isHidden(notes));
    EXPECT_FALSE(control.isActive(notes));
    control.unhide(notes);
    control.activate(notes);
    applications.active = notes;
    EXPECT_TRUE(control.isActive(notes));
    EXPECT_THAT(applications.calls, ElementsAre("unhide 501", "activate 501"));
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

TEST_F(MacWindowControlTest, MainAndFocusedAreReadAsBooleans) {
    EXPECT_EQ(control.isMain(handle), std::nullopt);
    accessibility.element(window).attributes["AXMain"] = true;
    accessibility.element(window).attributes["AXFocused"] = std::int64_t{1};
    EXPECT_THAT(control.isMain(handle), Optional(true));
    EXPECT_THAT(control.isFocused(handle), Optional(true)) << "a number counts by its Boolean value";
    accessibility.element(window).attributes["AXFocused"] = false;
    EXPECT_THAT(control.isFocused(handle), Optional(false));
    accessibility.element(window).attributes["AXFocused"] = std::string("yes");
    EXPECT_EQ(control.isFocused(handle), std::nullopt);
}

TEST_F(MacWindowControlTest, ARefusedStepIsLoggedAndStopsNothing) {
    accessibility.element(window).refusals["AXRaise"] = kAXErrorActionUnsupported;
    accessibility.element(app).refusals["AXFrontmost"] = kAXErrorAttributeUnsupported;
    control.raise(handle);
    control.setMain(handle);
    control.setFrontmost(notes);
    EXPECT_THAT(control.isMain(handle), Optional(true));
    EXPECT_THAT(takeLog(), ElementsAre("AXRaise: error -25206", "AXFrontmost: error -25205"));
}

TEST_F(MacWindowControlTest, AHungApplicationIsWaitedForAsLongAsItsTimeoutSays) {
    control.setMessagingTimeout(notes, timeout);
    control.setMessagingTimeout(handle, timeout);
    accessibility.application(notes).hangs = true;
    control.raise(handle);
    control.setFrontmost(notes);
    EXPECT_NEAR(accessibility.secondsWaited(), 1.0, 1e-6);
    EXPECT_EQ(control.isMain(handle), std::nullopt);
    EXPECT_THAT(control.windowElements(notes), IsEmpty());
}

TEST_F(MacWindowControlTest, TheTimeoutOfOneApplicationIsNotThatOfAnother) {
    const auto other = accessibility.addApplication(502);
    control.setMessagingTimeout(notes, timeout);
    control.setFrontmost(502);
    EXPECT_THAT(accessibility.takeRequests(),
                ElementsAre("set AXFrontmost to true of " + std::to_string(other.number) + " within 6"));
}

TEST_F(MacWindowControlTest, WhoeverHasTheNumberOfAnEarlierProcessIsAskedAndNotThatProcess) {
    control.setMessagingTimeout(notes, timeout);
    const auto another = accessibility.addApplication(notes);
    control.setMessagingTimeout(notes, timeout);
    control.setFrontmost(notes);
    EXPECT_THAT(accessibility.takeRequests(),
                ElementsAre("set AXFrontmost to true of " + std::to_string(another.number) + " within 0.5"));
}

TEST_F(MacWindowControlTest, WhatIsAskedOfTheWindowsFoundIsWaitedForNoLongerThanTheirApplication) {
    control.setMessagingTimeout(notes, timeout);
    const auto elements = control.windowElements(notes);
    ASSERT_EQ(elements.size(), 1U);
    static_cast<void>(control.windowNumber(elements[0]));
    EXPECT_THAT(accessibility.takeRequests(), ElementsAre("copy AXWindows of 1 within 0.5", "number of 2 within 0.5"));
}

TEST_F(MacWindowControlTest, WindowsAreFoundByTheirNumbers) {
    accessibility.addWindow(notes, {.windowNumber = 78});
    const auto elements = control.windowElements(notes);
    ASSERT_EQ(elements.size(), 2U);
    EXPECT_TRUE(elements[0] == handle);
    EXPECT_THAT(control.windowNumber(elements[0]), Optional(77U));
    EXPECT_THAT(control.windowNumber(elements[1]), Optional(78U));
    accessibility.element(window).isGone = true;
    EXPECT_EQ(control.windowNumber(handle), std::nullopt);
}

TEST_F(MacWindowControlTest, ElementsOfAnotherDesktopAreLeftAlone) {
    desktop.launch({.pid = 7});
    desktop.openWindow({.id = 70, .pid = 7});
    const auto foreign = desktop.elementOf(70);
    control.setMessagingTimeout(foreign, timeout);
    control.unminimize(foreign);
    control.raise(foreign);
    control.setMain(foreign);
    control.setFocused(foreign);
    control.setFocusedWindow(notes, foreign);
    EXPECT_EQ(control.isMain(foreign), std::nullopt);
    EXPECT_EQ(control.windowNumber(foreign), std::nullopt);
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

}  // namespace
}  // namespace ferrowyn
