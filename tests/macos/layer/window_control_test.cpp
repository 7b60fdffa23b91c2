#include "platform/macos/mac_window_control.h"

#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Pid notes = 501;

/// Writes each request between those that go through the Accessibility interface.
class ScriptedApplications final : public MacApplicationControl {
public:
    explicit ScriptedApplications(fake::Accessibility& accessibility) : accessibility_(accessibility) {}

    [[nodiscard]] bool isHidden(Pid pid) const override { return pid == hidden; }
    void unhide(Pid pid) override { add("unhide " + std::to_string(pid)); }
    void activate(Pid pid) override { add("activate " + std::to_string(pid)); }
    [[nodiscard]] bool isActive(Pid pid) const override { return pid == active; }

    /// Everything that has been requested, in its order.
    [[nodiscard]] std::vector<std::string> takeSteps() {
        collect();
        return std::exchange(steps_, {});
    }

    Pid hidden = 0;
    Pid active = 0;

private:
    void collect() {
        const auto requests = accessibility_.takeRequests();
        steps_.insert(steps_.end(), requests.begin(), requests.end());
    }
    void add(std::string step) {
        collect();
        steps_.push_back(std::move(step));
    }

    fake::Accessibility& accessibility_;
    std::vector<std::string> steps_;
};

class MacWindowControlTest : public MacFixture {
protected:
    /// Main and focused, in the active application, as far as it is not scripted otherwise.
    void makeActive() {
        applications.active = notes;
        accessibility.element(window).attributes["AXMain"] = true;
        accessibility.element(window).attributes["AXFocused"] = true;
    }
    [[nodiscard]] ActivationState state() const { return control.stateOf(notes, handle); }

    fake::ElementId app = accessibility.addApplication(notes);
    fake::ElementId window = accessibility.addWindow(notes, {.windowNumber = 77});
    AXElementRef handle = handleOf(window);
    ScriptedApplications applications{accessibility};
    MacWindowNumberLookup lookup;
    MacWindowControl control{applications, lookup, log};
};

TEST_F(MacWindowControlTest, TheWindowIsFocusedInsideItsApplicationBeforeThatIsActivatedAndMadeFrontmost) {
    control.raiseAndFocus({.pid = notes, .window = handle});
    EXPECT_THAT(applications.takeSteps(),
                ElementsAre("perform AXRaise of 2 within 0.5", "set AXMain to true of 2 within 0.5",
                            "set AXFocused to true of 2 within 0.5", "set AXFocusedWindow to 2 of 1 within 0.5",
                            "activate 501", "set AXFrontmost to true of 1 within 0.5"));
    EXPECT_THAT(takeLog(), IsEmpty());
}

TEST_F(MacWindowControlTest, WhatIsHiddenOrMinimizedIsShownFirst) {
    applications.hidden = notes;
    control.raiseAndFocus({.pid = notes, .window = handle, .isMinimized = true});
    EXPECT_THAT(applications.takeSteps(),
                ElementsAre("unhide 501", "set AXMinimized to false of 2 within 0.5", "perform AXRaise of 2 within 0.5",
                            "set AXMain to true of 2 within 0.5", "set AXFocused to true of 2 within 0.5",
                            "set AXFocusedWindow to 2 of 1 within 0.5", "activate 501",
                            "set AXFrontmost to true of 1 within 0.5"));
}

TEST_F(MacWindowControlTest, ARetryShowsNothingAndRaisesAgain) {
    applications.hidden = notes;
    control.raiseAndFocus({.pid = notes, .window = handle, .isMinimized = true, .isRetry = true});
    EXPECT_THAT(applications.takeSteps(),
                ElementsAre("perform AXRaise of 2 within 0.5", "set AXMain to true of 2 within 0.5",
                            "set AXFocused to true of 2 within 0.5", "set AXFocusedWindow to 2 of 1 within 0.5",
                            "activate 501", "set AXFrontmost to true of 1 within 0.5"));
}

TEST_F(MacWindowControlTest, AWindowThatADialogBlocksIsRestoredAndRaisedBelowIt) {
    const auto dialog = handleOf(accessibility.addWindow(notes, {.windowNumber = 78}));
    control.raiseAndFocus({.pid = notes, .window = dialog, .blockedWindow = handle, .isMinimized = true});
    EXPECT_THAT(applications.takeSteps(),
                ElementsAre("set AXMinimized to false of 2 within 0.5", "perform AXRaise of 2 within 0.5",
                            "perform AXRaise of 3 within 0.5", "set AXMain to true of 3 within 0.5",
                            "set AXFocused to true of 3 within 0.5", "set AXFocusedWindow to 3 of 1 within 0.5",
                            "activate 501", "set AXFrontmost to true of 1 within 0.5"));
}

TEST_F(MacWindowControlTest, EachRefusedStepIsLoggedAndTheNextOnesFollow) {
    applications.hidden = notes;
    accessibility.element(window).refusals = {{"AXMinimized", kAXErrorAttributeUnsupported},
                                              {"AXRaise", kAXErrorActionUnsupported},
                                              {"AXMain", kAXErrorFailure},
                                              {"AXFocused", kAXErrorIllegalArgument}};
    accessibility.element(app).refusals = {{"AXFocusedWindow", kAXErrorNotImplemented},
                                           {"AXFrontmost", kAXErrorAttributeUnsupported}};
    control.raiseAndFocus({.pid = notes, .window = handle, .isMinimized = true});
    EXPECT_EQ(applications.takeSteps().size(), 8U);
    EXPECT_THAT(takeLog(),
                ElementsAre("AXMinimized: error -25205", "AXRaise: error -25206", "AXMain: error -25200",
                            "AXFocused: error -25201", "AXFocusedWindow: error -25208", "AXFrontmost: error -25205"));
}

TEST_F(MacWindowControlTest, AHungApplicationIsWaitedForHalfASecondAMessage) {
    accessibility.application(notes).hangs = true;
    control.raiseAndFocus({.pid = notes, .window = handle});
    EXPECT_NEAR(accessibility.secondsWaited(), 2.5, 1e-6);
    EXPECT_EQ(state(), ActivationState::unreadable);
    EXPECT_NEAR(accessibility.secondsWaited(), 3.0, 1e-6) << "once, though the state is in two attributes";
    EXPECT_FALSE(control.findWindow(notes, 77));
    EXPECT_NEAR(accessibility.secondsWaited(), 3.5, 1e-6);
}

TEST_F(MacWindowControlTest, WithoutAHandleOfTheApplicationItsWindowIsRaisedAndItIsActivated) {
    accessibility.refusesHandles = true;
    control.raiseAndFocus({.pid = notes, .window = handle});
    EXPECT_THAT(applications.takeSteps(),
                ElementsAre("perform AXRaise of 2 within 0.5", "set AXMain to true of 2 within 0.5",
                            "set AXFocused to true of 2 within 0.5", "activate 501"));
    EXPECT_FALSE(control.findWindow(notes, 77));
    EXPECT_THAT(applications.takeSteps(), IsEmpty());
}

TEST_F(MacWindowControlTest, AnApplicationIsActivatedWithoutAnyOfItsWindows) {
    control.activateApplication(notes);
    EXPECT_THAT(applications.takeSteps(), ElementsAre("activate 501"));
}

TEST_F(MacWindowControlTest, TheProcessThatHasTheNumberOfAnEarlierOneIsAskedAndNotTheEarlierOne) {
    control.raiseAndFocus({.pid = notes, .window = handle});
    const auto another = accessibility.addApplication(notes);
    static_cast<void>(applications.takeSteps());
    control.raiseAndFocus({.pid = notes, .window = handle});
    EXPECT_EQ(applications.takeSteps().back(),
              "set AXFrontmost to true of " + std::to_string(another.number) + " within 0.5");
}

TEST_F(MacWindowControlTest, TheMainAndFocusedWindowOfTheActiveApplicationIsActive) {
    makeActive();
    EXPECT_EQ(state(), ActivationState::active);
    applications.active = 0;
    EXPECT_EQ(state(), ActivationState::notActive) << "another application is";
    for (const auto* const attribute : {"AXMain", "AXFocused"}) {
        makeActive();
        accessibility.element(window).attributes[attribute] = false;
        EXPECT_EQ(state(), ActivationState::notActive) << attribute;
        accessibility.element(window).attributes[attribute] = std::int64_t{1};
        EXPECT_EQ(state(), ActivationState::active) << "a number counts by its Boolean value: " << attribute;
        accessibility.element(window).attributes[attribute] = std::string("yes");
        EXPECT_EQ(state(), ActivationState::unreadable) << attribute;
        accessibility.element(window).attributes.erase(attribute);
        EXPECT_EQ(state(), ActivationState::unreadable) << attribute;
    }
}

TEST_F(MacWindowControlTest, TheStateIsReadWithinTheTimeoutOfAMessage) {
    makeActive();
    EXPECT_EQ(state(), ActivationState::active);
    EXPECT_THAT(applications.takeSteps(), ElementsAre("copy AXMain of 2 within 0.5", "copy AXFocused of 2 within 0.5"));
}

TEST_F(MacWindowControlTest, AWindowThatIsGoneHasNoState) {
    makeActive();
    accessibility.element(window).isGone = true;
    EXPECT_EQ(state(), ActivationState::unreadable);
}

TEST_F(MacWindowControlTest, AWindowIsFoundByItsNumber) {
    const auto second = accessibility.addWindow(notes, {.windowNumber = 78});
    accessibility.addWindow(notes, {.windowNumber = 79});
    const auto found = control.findWindow(notes, 78);
    ASSERT_TRUE(found);
    EXPECT_TRUE(*found == handleOf(second));
    EXPECT_THAT(applications.takeSteps(),
                ElementsAre("copy AXWindows of 1 within 0.5", "number of 2 within 0.5", "number of 3 within 0.5"));
    EXPECT_FALSE(control.findWindow(notes, 80));
}

TEST_F(MacWindowControlTest, ElementsOfAnotherDesktopAreLeftAlone) {
    desktop.launch({.pid = 7});
    desktop.openWindow({.id = 70, .pid = 7});
    const auto foreign = desktop.elementOf(70);
    control.raiseAndFocus({.pid = notes, .window = foreign, .blockedWindow = foreign, .isMinimized = true});
    EXPECT_THAT(applications.takeSteps(), ElementsAre("activate 501", "set AXFrontmost to true of 1 within 0.5"));
    EXPECT_EQ(control.stateOf(notes, foreign), ActivationState::unreadable);
    EXPECT_THAT(applications.takeSteps(), IsEmpty());
}

}  // namespace
}  // namespace ferrowyn
