#include "input/window_activator.h"

#include <cmath>
#include <optional>

#include "platform/simulated/simulated_desktop.h"
#include "tests/input/print_log_line.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using LogLine = SimulatedDesktop::LogLine;

constexpr Pid editor = 100;
constexpr Pid browser = 200;
constexpr auto initialDelay = WindowActivator::initialVerificationDelay;

class WindowActivatorTest : public ::testing::Test {
protected:
    WindowActivatorTest() {
        desktop.launch({.pid = editor, .localizedName = "Editor"});
        desktop.launch({.pid = browser, .localizedName = "Browser"});
        desktop.openWindow({.id = 7, .pid = editor, .title = "Draft"});
        desktop.openWindow({.id = 8, .pid = browser, .title = "News"});
        desktop.setFrontmost(browser);
        activator.emplace(desktop.platform());
        activator->onActivated = [this](const AppWindow& window) { activated.push_back(window.id); };
    }

    AppWindow window(WindowId id, Pid pid) const {
        return {.id = id, .axElement = desktop.elementOf(id), .pid = pid, .appName = "Editor as listed"};
    }
    AppWindow windowWithoutElement(WindowId id, Pid pid) const {
        auto result = window(id, pid);
        result.axElement.reset();
        return result;
    }

    /// Asks for the window, and lets the task that this starts run.
    void activate(const AppWindow& window) {
        activator->activate(window);
        desktop.settle();
    }

    void forgetCalls() { static_cast<void>(desktop.takeControlCalls()); }

    SimulatedDesktop desktop;
    std::optional<WindowActivator> activator;
    std::vector<WindowId> activated;
};

LogLine standard(std::string message) {
    return {LogLevel::standard, "activation", std::move(message)};
}

TEST_F(WindowActivatorTest, ReturnsAtOnceAndRaisesTheWindowInATaskOfItsOwn) {
    activator->activate(window(7, editor));
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    desktop.settle();
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 7"));
    EXPECT_THAT(activated, IsEmpty());
}

TEST_F(WindowActivatorTest, OfTwoActivationsInOneTaskOnlyTheSecondRaises) {
    activator->activate(window(7, editor));
    activator->activate(window(8, browser));
    desktop.advance(5s);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 8"));
    EXPECT_THAT(activated, ElementsAre(8U));
}

TEST_F(WindowActivatorTest, DestroyedBeforeItsTaskItRaisesNothing) {
    activator->activate(window(7, editor));
    activator.reset();
    desktop.advance(5s);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

TEST_F(WindowActivatorTest, WhatWasListedMayChangeBeforeItsTaskRuns) {
    auto chosen = window(7, editor);
    activator->activate(chosen);
    chosen.pid = 300;
    desktop.advance(initialDelay);
    EXPECT_THAT(activated, ElementsAre(7U));
}

TEST_F(WindowActivatorTest, ConfirmsAfterTheFirstPause) {
    activate(window(7, editor));
    forgetCalls();
    desktop.advance(0.119s);
    EXPECT_THAT(activated, IsEmpty());
    desktop.advance(0.001s);
    EXPECT_THAT(activated, ElementsAre(7U));
    EXPECT_EQ(desktop.frontmostPid(), editor);
    EXPECT_EQ(desktop.focusedWindow(editor), 7U);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::debug, "activation", "Window 7 active after 1 check(s)"}));
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(WindowActivatorTest, RestoresAMinimisedWindow) {
    desktop.changeWindow(7, [](auto& state) { state.isMinimized = true; });
    auto minimised = window(7, editor);
    minimised.isMinimized = true;
    activate(minimised);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 7 restoring it"));
    EXPECT_FALSE(desktop.window(7)->isMinimized);
}

TEST_F(WindowActivatorTest, ShowsAHiddenApplication) {
    desktop.setHidden(editor, true);
    activate(window(7, editor));
    EXPECT_FALSE(desktop.isHidden(editor));
}

TEST_F(WindowActivatorTest, ShowsAtTheFirstTryOnlyWhatIsHiddenOrMinimised) {
    desktop.setHidden(editor, true);
    desktop.changeWindow(7, [](auto& state) { state.isMinimized = true; });
    desktop.setIgnoresActivation(editor, true);
    auto minimised = window(7, editor);
    minimised.isMinimized = true;
    activate(minimised);
    desktop.setIgnoresActivation(editor, false);
    desktop.advance(initialDelay);
    EXPECT_EQ(desktop.focusedWindow(editor), 7U) << "raised again";
    EXPECT_TRUE(desktop.isHidden(editor));
    EXPECT_TRUE(desktop.window(7)->isMinimized);
}

TEST_F(WindowActivatorTest, OfABlockedWindowTheDialogGetsTheKeyboardAboveIt) {
    // The dialog may be another application's, as a file chooser is.
    auto blocked = window(7, editor);
    blocked.blockedBy = ModalDialog{8, desktop.elementOf(8), browser};
    desktop.setFrontmost(editor);
    activate(blocked);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 8 above 7"));
    desktop.advance(initialDelay);
    EXPECT_THAT(activated, ElementsAre(7U)) << "which the user chose";
    EXPECT_EQ(desktop.frontmostPid(), browser);
    EXPECT_EQ(desktop.focusedWindow(browser), 8U);
}

TEST_F(WindowActivatorTest, ABlockedWindowThatIsMinimisedIsRestoredItself) {
    for (const WindowId each : {7U, 8U}) {
        desktop.changeWindow(each, [](auto& state) { state.isMinimized = true; });
    }
    auto blocked = window(7, editor);
    blocked.isMinimized = true;
    blocked.blockedBy = ModalDialog{8, desktop.elementOf(8), browser};
    activate(blocked);
    EXPECT_FALSE(desktop.window(7)->isMinimized);
    EXPECT_TRUE(desktop.window(8)->isMinimized);
}

TEST_F(WindowActivatorTest, OfABlockedWindowWithoutAnElementTheDialogIsRestored) {
    desktop.changeWindow(8, [](auto& state) { state.isMinimized = true; });
    auto blocked = windowWithoutElement(7, editor);
    blocked.isMinimized = true;
    blocked.blockedBy = ModalDialog{8, desktop.elementOf(8), browser};
    activate(blocked);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 8 restoring it"));
    EXPECT_FALSE(desktop.window(8)->isMinimized);
}

TEST_F(WindowActivatorTest, AWindowWhoseDialogHasJustBeenClosedIsConfirmedItself) {
    auto blocked = window(7, editor);
    blocked.blockedBy = ModalDialog{9, desktop.elementOf(9), editor};
    activate(blocked);
    desktop.advance(initialDelay);
    EXPECT_THAT(activated, ElementsAre(7U));
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::debug, "activation", "Window 7 active after 1 check(s)"}));
}

TEST_F(WindowActivatorTest, AWindowWhoseDialogHasJustBeenClosedCanBeOvertakenToo) {
    auto blocked = window(7, editor);
    blocked.blockedBy = ModalDialog{9, desktop.elementOf(9), editor};
    activate(blocked);
    desktop.focusWindow(8);
    desktop.advance(5s);
    EXPECT_EQ(desktop.frontmostPid(), browser);
    EXPECT_THAT(activated, IsEmpty());
}

TEST_F(WindowActivatorTest, AWindowThatLostTheKeyboardToNobodyIsNotRaisedIntoTheNextChoice) {
    activate(window(7, editor));
    forgetCalls();
    desktop.setFrontmost(std::nullopt);
    desktop.advance(initialDelay);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    desktop.focusWindow(8);
    desktop.advance(5s);
    EXPECT_EQ(desktop.frontmostPid(), browser);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
}

TEST_F(WindowActivatorTest, AWindowThatNobodyTookTheKeyboardFromIsRaisedAgain) {
    activate(window(7, editor));
    forgetCalls();
    desktop.setFrontmost(std::nullopt);
    desktop.advance(initialDelay * 2.79);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty()) << "it is looked at once more first";
    desktop.advance(initialDelay * 0.02);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 7 again"));
    EXPECT_EQ(desktop.frontmostPid(), editor);
}

TEST_F(WindowActivatorTest, AWindowIsActivatedItselfWhenTheApplicationOfItsDialogIsGone) {
    auto blocked = window(7, editor);
    blocked.blockedBy = ModalDialog{99, desktop.elementOf(99), 300};
    activate(blocked);
    desktop.advance(initialDelay);
    EXPECT_THAT(activated, ElementsAre(7U));
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::debug, "activation", "Window 7 active after 1 check(s)"}));
}

TEST_F(WindowActivatorTest, SaysThatTheProcessIsGoneAndCallsNobody) {
    activate(window(9, 300));
    desktop.advance(10s);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    EXPECT_THAT(activated, IsEmpty());
    EXPECT_THAT(desktop.takeLog(), ElementsAre(LogLine{LogLevel::error, "activation", "pid 300 is gone"}));
}

TEST_F(WindowActivatorTest, ChecksFourTimesAndRaisesThreeTimesMoreWhenNothingHappens) {
    desktop.setIgnoresActivation(editor, true);
    activate(window(7, editor));
    forgetCalls();
    // After 0.12, 0.216, 0.3888 and 0.69984 seconds.
    for (const Seconds pause : {0.12s, 0.216s, 0.3888s}) {
        desktop.advance(pause - 0.001s);
        EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
        desktop.advance(0.001s);
        EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 7 again"));
    }
    desktop.advance(0.69984s - 0.001s);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
    EXPECT_THAT(activated, IsEmpty());
    desktop.advance(0.001s);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    EXPECT_THAT(activated, ElementsAre(7U)) << "the user did choose it";
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Could not confirm activation of window 7 in Editor")));
    desktop.advance(10s);
    EXPECT_THAT(activated, ElementsAre(7U));
}

TEST_F(WindowActivatorTest, CountsTheChecksUntilItWorked) {
    desktop.setIgnoresActivation(editor, true);
    activate(window(7, editor));
    desktop.advance(0.12s);
    desktop.setIgnoresActivation(editor, false);
    desktop.advance(0.216s);
    EXPECT_THAT(activated, IsEmpty()) << "raised again only after the second check";
    desktop.advance(0.3888s);
    EXPECT_THAT(activated, ElementsAre(7U));
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::debug, "activation", "Window 7 active after 3 check(s)"}));
}

TEST_F(WindowActivatorTest, TakesNoAnswerForNoConfirmation) {
    activate(window(7, editor));
    desktop.setHung(editor, true);
    desktop.advance(2s);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Could not confirm activation of window 7 in Editor")));
    EXPECT_THAT(activated, ElementsAre(7U));
}

TEST_F(WindowActivatorTest, TellsWhetherTheWindowHasBecomeTheActiveOneBeforeItTellsOfTheSwitch) {
    std::vector<std::string> told;
    activator->onVerified = [&](bool isConfirmed, Pid application) {
        EXPECT_EQ(application, editor);
        told.emplace_back(isConfirmed ? "confirmed" : "unconfirmed");
    };
    activator->onActivated = [&](const AppWindow&) { told.emplace_back("activated"); };
    activate(window(7, editor));
    desktop.advance(2s);
    EXPECT_THAT(told, ElementsAre("confirmed", "activated"));

    desktop.setFrontmost(browser);
    desktop.setIgnoresActivation(editor, true);
    activate(window(7, editor));
    desktop.advance(2s);
    EXPECT_THAT(told, ElementsAre("confirmed", "activated", "unconfirmed", "activated"));
}

TEST_F(WindowActivatorTest, AWindowThatWasTheActiveOneConfirmsNothing) {
    std::vector<bool> told;
    activator->onVerified = [&](bool isConfirmed, Pid) { told.push_back(isConfirmed); };
    activate(window(7, editor));
    desktop.advance(2s);
    ASSERT_THAT(told, ElementsAre(true));
    activate(window(7, editor));
    desktop.advance(2s);
    EXPECT_THAT(told, ElementsAre(true));
    EXPECT_THAT(activated, ElementsAre(7U, 7U));
}

TEST_F(WindowActivatorTest, AWindowThatCouldNotBeLookedAtBeforeIsConfirmedAllTheSame) {
    std::vector<bool> told;
    activator->onVerified = [&](bool isConfirmed, Pid) { told.push_back(isConfirmed); };
    desktop.setFrontmost(editor);
    desktop.setHung(editor, true);
    activate(window(7, editor));
    desktop.setHung(editor, false);
    desktop.advance(2s);
    EXPECT_THAT(told, ElementsAre(true));
}

TEST_F(WindowActivatorTest, AWindowThatLosesTheKeyboardToNobodyEachTimeIsNeitherConfirmedNorUnconfirmed) {
    std::vector<bool> told;
    activator->onVerified = [&](bool isConfirmed, Pid) { told.push_back(isConfirmed); };
    activate(window(7, editor));
    for (int check = 0; check < WindowActivator::maximumAttempts; ++check) {
        desktop.setFrontmost(std::nullopt);
        desktop.advance(initialDelay * std::pow(1.8, check));
    }
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(testing::Field(&LogLine::message, testing::HasSubstr("Could not confirm"))));
    EXPECT_THAT(told, IsEmpty()) << "it came to the front";
}

TEST_F(WindowActivatorTest, AWindowThatCannotBeLookedAtIsNeitherConfirmedNorUnconfirmed) {
    std::vector<bool> told;
    activator->onVerified = [&](bool isConfirmed, Pid) { told.push_back(isConfirmed); };
    activate(window(7, editor));
    desktop.setHung(editor, true);
    desktop.advance(2s);
    desktop.setHung(editor, false);
    activate(window(7, editor));
    desktop.closeWindow(7);
    desktop.advance(2s);
    activate(window(9, 300));
    desktop.advance(2s);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(WindowActivatorTest, NamesTheApplicationAsItWasListedWhenItHasNoNameOfItsOwn) {
    desktop.launch({.pid = 300});
    desktop.openWindow({.id = 9, .pid = 300});
    desktop.setIgnoresActivation(300, true);
    desktop.setFrontmost(browser);
    activate(window(9, 300));
    desktop.advance(2s);
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(standard("Could not confirm activation of window 9 in Editor as listed")));
}

TEST_F(WindowActivatorTest, LeavesTheFocusWithWhatWasChosenAfterItsWindowHadIt) {
    activate(window(7, editor));
    desktop.advance(0.06s);
    ASSERT_EQ(desktop.frontmostPid(), editor);
    desktop.setFrontmost(browser);
    forgetCalls();
    desktop.advance(5s);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    EXPECT_EQ(desktop.frontmostPid(), browser);
    EXPECT_THAT(activated, IsEmpty()) << "the other window leads the order";
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::debug, "activation", "Another window was chosen after window 7"}));
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(WindowActivatorTest, RaisesAgainWhatHasNotHadTheFocusYetWhateverElseGetsIt) {
    desktop.setIgnoresActivation(editor, true);
    activate(window(7, editor));
    desktop.advance(0.06s);
    desktop.launch({.pid = 300});
    desktop.setFrontmost(300);
    forgetCalls();
    desktop.advance(0.06s);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 7 again"));
}

TEST_F(WindowActivatorTest, LeavesTheFocusWithWhatTheUserChoseBeforeItsWindowHadIt) {
    desktop.openWindow({.id = 9, .pid = browser});
    desktop.setIgnoresActivation(editor, true);
    activate(window(7, editor));
    desktop.advance(0.06s);
    desktop.focusWindow(9);
    forgetCalls();
    desktop.advance(5s);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    EXPECT_EQ(desktop.focusedWindow(browser), 9U);
    EXPECT_THAT(activated, IsEmpty());
}

TEST_F(WindowActivatorTest, OnlyTheSecondOfTwoQuickActivationsReports) {
    activate(window(7, editor));
    desktop.advance(0.05s);
    activate(window(8, browser));
    desktop.advance(5s);
    EXPECT_THAT(activated, ElementsAre(8U));
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(LogLine{LogLevel::debug, "activation", "Window 8 active after 1 check(s)"}));
}

TEST_F(WindowActivatorTest, ANewActivationOfAProcessThatIsGoneStillEndsTheFormerOne) {
    activate(window(7, editor));
    activate(window(9, 300));
    desktop.advance(5s);
    EXPECT_THAT(activated, IsEmpty());
}

TEST_F(WindowActivatorTest, LooksUpAMissingElementAmongTheApplicationsWindows) {
    activate(windowWithoutElement(7, editor));
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("activate 100", "raise 7"));
    desktop.advance(0.12s);
    EXPECT_THAT(activated, ElementsAre(7U));
}

TEST_F(WindowActivatorTest, RaisesAWindowFoundAtTheThirdLook) {
    desktop.changeWindow(7, [](auto& state) { state.isListedByAccessibility = false; });
    activate(windowWithoutElement(7, editor));
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("activate 100"));
    desktop.advance(0.2s);
    desktop.changeWindow(7, [](auto& state) { state.isListedByAccessibility = true; });
    desktop.advance(0.039s);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    desktop.advance(0.001s);
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("raise 7"));
}

TEST_F(WindowActivatorTest, ActivatesTheApplicationAloneWhenNoLookFindsTheElement) {
    desktop.changeWindow(7, [](auto& state) { state.hasWindowNumber = false; });
    activate(windowWithoutElement(7, editor));
    desktop.advance(0.479s);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
    desktop.advance(0.001s);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("No AX element for window 7; activated its app only")));
    EXPECT_THAT(activated, ElementsAre(7U));
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("activate 100"));
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(WindowActivatorTest, ACancelledLookUpStopsLooking) {
    desktop.changeWindow(7, [](auto& state) { state.isListedByAccessibility = false; });
    activate(windowWithoutElement(7, editor));
    desktop.advance(0.2s);
    activate(window(8, browser));
    desktop.changeWindow(7, [](auto& state) { state.isListedByAccessibility = true; });
    forgetCalls();
    desktop.advance(5s);
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    EXPECT_THAT(activated, ElementsAre(8U));
}

TEST_F(WindowActivatorTest, DestroyingItCancelsTheActivation) {
    activate(window(7, editor));
    activator.reset();
    desktop.advance(5s);
    EXPECT_THAT(activated, IsEmpty());
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(WindowActivatorTest, MayActivateAnotherWindowFromItsCallback) {
    activator->onActivated = [this](const AppWindow& reported) {
        activated.push_back(reported.id);
        if (reported.id == 7) {
            activator->activate(window(8, browser));
        }
    };
    activate(window(7, editor));
    desktop.advance(5s);
    EXPECT_THAT(activated, ElementsAre(7U, 8U));
}

TEST_F(WindowActivatorTest, WorksWithoutACallback) {
    activator->onActivated = nullptr;
    activate(window(7, editor));
    desktop.advance(1s);
    EXPECT_EQ(desktop.frontmostPid(), editor);
}

}  // namespace
}  // namespace ferrowyn
