#include "input/hot_key_monitor.h"

#include <optional>

#include "platform/simulated/simulated_desktop.h"
#include "tests/input/print_log_line.h"
#include "tests/input/tap_doubles.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using Failure = HotKeyMonitor::Failure;
using LogLine = SimulatedDesktop::LogLine;

const SimulatedDesktop::Key optionTab{48, event_flags::option, u"\t", u"\t"};
const SimulatedDesktop::Key optionShiftTab{48, event_flags::option | event_flags::shift, u"\t", u"\t"};
const SimulatedDesktop::Key rightArrow{124, event_flags::option, u"\uF703", u"\uF703"};
const SimulatedDesktop::Key letterA{0, 0, u"a", u"a"};

LogLine standard(std::string message) {
    return {LogLevel::standard, "input", std::move(message)};
}
LogLine error(std::string message) {
    return {LogLevel::error, "input", std::move(message)};
}

using SessionCall = RecordingTap::SessionCall;

class HotKeyMonitorTest : public ::testing::Test {
protected:
    HotKeyMonitorTest() {
        monitor.emplace(desktop.platform(), SwitcherModifier::option);
        monitor->onCommand = [this](const SwitcherCommand& command) { commands.push_back(command); };
        monitor->onTapDisabled = [this] { ++disableCount; };
        monitor->onTapFailed = [this](Failure failure) {
            failures.push_back(failure);
            wasRunningAtFailure = monitor && monitor->isRunning().get();
        };
    }

    /// A running monitor whose start is no longer in the log.
    void start() {
        ASSERT_TRUE(monitor->start());
        forgetLog();
    }

    void forgetLog() { static_cast<void>(desktop.takeLog()); }

    /// Disables the tap by a timeout and lets the monitor handle it.
    void timeOut() {
        desktop.disableTapByTimeout();
        desktop.settle();
    }

    /// A tap that is told what the monitor's own would be.
    RecordingTap* record() {
        recordingTap.emplace(monitor->state());
        monitor->state().setTapPort(&*recordingTap);
        return &*recordingTap;
    }

    SimulatedDesktop desktop;
    std::optional<RecordingTap> recordingTap;
    std::optional<HotKeyMonitor> monitor;
    std::vector<SwitcherCommand> commands;
    std::vector<Failure> failures;
    int disableCount = 0;
    bool wasRunningAtFailure = false;
};

// --- start and stop
// ---------------------------------------------------------------------------------------------------

TEST_F(HotKeyMonitorTest, InstallsNothingUntilItIsStarted) {
    EXPECT_FALSE(monitor->isRunning().get());
    EXPECT_EQ(desktop.tapStartCount(), 0);
    EXPECT_EQ(monitor->state().snapshot(), (TapState::Snapshot{event_flags::option, false, false}));
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(HotKeyMonitorTest, StartsAnEnabledTapForItsTrigger) {
    EXPECT_TRUE(monitor->start());
    EXPECT_TRUE(monitor->isRunning().get());
    EXPECT_TRUE(desktop.tapIsEnabled());
    EXPECT_EQ(desktop.tapTrigger(), SwitcherModifier::option);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap installed")));
}

TEST_F(HotKeyMonitorTest, StartingTwiceInstallsOneTap) {
    EXPECT_TRUE(monitor->start());
    EXPECT_TRUE(monitor->start());
    EXPECT_EQ(desktop.tapStartCount(), 1);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap installed")));
}

TEST_F(HotKeyMonitorTest, DoesNotStartWithoutTrust) {
    desktop.setTrusted(false);
    EXPECT_FALSE(monitor->start());
    EXPECT_FALSE(monitor->isRunning().get());
    EXPECT_EQ(desktop.tapStartCount(), 0);
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(error("Cannot install event tap without Accessibility trust")));
}

TEST_F(HotKeyMonitorTest, DoesNotStartWhenTheSystemRefusesTheTapAndLogsItsWords) {
    for (const auto* const words : {"CGEvent.tapCreate failed", "The event tap's thread cannot be started"}) {
        desktop.refuseKeyboardTap(words);
        monitor->state().openSession(false);
        EXPECT_FALSE(monitor->start());
        EXPECT_FALSE(monitor->isRunning().get());
        EXPECT_TRUE(monitor->state().snapshot().isSwitcherVisible) << "a session that the menu has opened goes on";
        EXPECT_EQ(desktop.pendingTimerCount(), 0U);
        EXPECT_THAT(desktop.takeLog(), ElementsAre(error(words)));
        desktop.advance(60s);
        EXPECT_THAT(desktop.takeLog(), IsEmpty()) << "no health check of a tap that is not there";
    }
    desktop.allowKeyboardTap();
    EXPECT_TRUE(monitor->start());
    EXPECT_TRUE(desktop.tapIsEnabled());
}

TEST_F(HotKeyMonitorTest, StoppingRemovesTheTapAndEveryTimer) {
    start();
    monitor->state().openSession(true);
    timeOut();
    forgetLog();
    monitor->state().openSession(true);

    monitor->stop();
    EXPECT_FALSE(monitor->isRunning().get());
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(monitor->state().snapshot(), (TapState::Snapshot{event_flags::option, false, false}));
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap removed")));
}

TEST_F(HotKeyMonitorTest, StoppingWhileStoppedDoesNothing) {
    monitor->stop();
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
    start();
    monitor->stop();
    monitor->stop();
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap removed")));
}

TEST_F(HotKeyMonitorTest, StoppingGivesTheKeyboardBack) {
    start();
    const auto* const tap = record();
    monitor->state().openSession(true);
    monitor->stop();
    ASSERT_EQ(tap->sessions.size(), 2U);
    EXPECT_EQ(tap->sessions[1], (SessionCall{false, false, false, tap->sessions[0].session}));
}

TEST_F(HotKeyMonitorTest, RestartsWithTheTriggerChosenMeanwhile) {
    start();
    monitor->stop();
    monitor->state().setModifier(SwitcherModifier::control);
    EXPECT_TRUE(monitor->start());
    EXPECT_EQ(desktop.tapTrigger(), SwitcherModifier::control);
    EXPECT_EQ(desktop.tapStartCount(), 2);
    EXPECT_FALSE(desktop.keyDown({48, event_flags::control, u"\t", u"\t"}));
    monitor->state().setModifier(SwitcherModifier::command);
    EXPECT_EQ(desktop.tapTrigger(), SwitcherModifier::command);
}

TEST_F(HotKeyMonitorTest, TellsANewTapOfASessionThatIsOpenAlready) {
    monitor->state().openSession(false);
    start();
    EXPECT_TRUE(desktop.tapSessionIsOpen());
}

// --- commands
// ---------------------------------------------------------------------------------------------------------

TEST_F(HotKeyMonitorTest, SwallowsTheTriggerAndPostsTheCommand) {
    start();
    EXPECT_FALSE(desktop.keyDown(optionTab));
    EXPECT_THAT(commands, IsEmpty()) << "delivered by the loop, never by the tap";
    desktop.settle();
    EXPECT_THAT(commands, ElementsAre(command::Invoke{false}));
}

TEST_F(HotKeyMonitorTest, PassesOtherKeysWhileHidden) {
    start();
    EXPECT_TRUE(desktop.keyDown(letterA));
    EXPECT_TRUE(desktop.keyUp(letterA));
    EXPECT_TRUE(desktop.flagsChanged(0));
    desktop.settle();
    EXPECT_THAT(commands, IsEmpty());
}

TEST_F(HotKeyMonitorTest, KeepsCommandsInOrder) {
    start();
    monitor->state().openSession(true);
    EXPECT_FALSE(desktop.keyDown(optionTab));
    EXPECT_FALSE(desktop.keyUp(optionTab));
    EXPECT_FALSE(desktop.keyDown(rightArrow));
    EXPECT_FALSE(desktop.keyDown(letterA));
    EXPECT_FALSE(desktop.keyDown(optionShiftTab));
    EXPECT_TRUE(desktop.flagsChanged(0)) << "the release goes on to the application";
    desktop.settle();
    EXPECT_THAT(commands, ElementsAre(command::Invoke{false}, command::Move{1}, command::InsertText{"a"},
                                      command::Invoke{true}, command::ModifierReleased{}));
}

TEST_F(HotKeyMonitorTest, RequestsASessionForATriggerWhileHiddenOnly) {
    start();
    desktop.keyDown(optionTab);
    EXPECT_TRUE(desktop.lastTapVerdict().isSwallowed);
    const auto first = desktop.lastTapVerdict().requestedSession;
    EXPECT_TRUE(first);
    desktop.keyDown(letterA);
    EXPECT_EQ(desktop.lastTapVerdict(), TapVerdict{});
    desktop.keyDown(optionTab);
    EXPECT_TRUE(desktop.lastTapVerdict().requestedSession);
    EXPECT_NE(desktop.lastTapVerdict().requestedSession, first);

    monitor->state().openSession(true);
    for (const auto& key : {optionTab, optionShiftTab, rightArrow, letterA}) {
        desktop.keyDown(key);
        EXPECT_EQ(desktop.lastTapVerdict(), TapVerdict{.isSwallowed = true});
    }
}

TEST_F(HotKeyMonitorTest, TellsTheTapWhichReleaseMayEndTheSession) {
    start();
    desktop.flagsChanged(0);
    EXPECT_EQ(desktop.lastTapVerdict(), TapVerdict{});
    monitor->state().openSession(false);
    desktop.flagsChanged(0);
    EXPECT_EQ(desktop.lastTapVerdict(), TapVerdict{}) << "without hold mode the session stays open";
    monitor->state().setHoldModeActive(true);
    desktop.flagsChanged(event_flags::option | event_flags::shift);
    EXPECT_EQ(desktop.lastTapVerdict(), TapVerdict{}) << "the modifier is still down";
    desktop.flagsChanged(0);
    EXPECT_EQ(desktop.lastTapVerdict(), (TapVerdict{.mayEndSession = true}));
}

TEST_F(HotKeyMonitorTest, TellsTheTapWhetherTheReleaseHasEndedTheSession) {
    start();
    const auto* const tap = record();
    bool ends = false;
    monitor->onCommand = [&](const SwitcherCommand&) {
        if (ends) {
            monitor->state().closeSession();
        }
    };
    monitor->state().openSession(true);
    desktop.flagsChanged(0);
    desktop.settle();
    EXPECT_THAT(tap->calls, ElementsAre("open", "open"));
    EXPECT_EQ(tap->sessions[0], tap->sessions[1]);
    ends = true;
    desktop.flagsChanged(event_flags::option);
    desktop.flagsChanged(0);
    desktop.settle();
    EXPECT_THAT(tap->calls, ElementsAre("open", "open", "closed"));
}

TEST_F(HotKeyMonitorTest, GivesTheKeyboardBackWhenATriggerOpensNothing) {
    start();
    const auto* const tap = record();
    desktop.keyDown(optionTab);
    const auto requested = desktop.lastTapVerdict().requestedSession;
    ASSERT_TRUE(requested);
    EXPECT_THAT(tap->sessions, IsEmpty());
    desktop.settle();
    EXPECT_THAT(tap->sessions, ElementsAre(SessionCall{false, false, false, *requested}));
}

TEST_F(HotKeyMonitorTest, LeavesTheAnswerToWhoeverOpensTheSession) {
    start();
    const auto* const tap = record();
    monitor->onCommand = [this](const SwitcherCommand&) { monitor->state().openSession(true); };
    desktop.keyDown(optionTab);
    const auto requested = desktop.lastTapVerdict().requestedSession;
    ASSERT_TRUE(requested);
    desktop.settle();
    EXPECT_THAT(tap->sessions, ElementsAre(SessionCall{true, true, true, *requested}));
}

TEST_F(HotKeyMonitorTest, AnswersARequestThatFoundTheSessionOpenAlready) {
    start();
    const auto* const tap = record();
    desktop.keyDown(optionTab);
    const auto requested = desktop.lastTapVerdict().requestedSession;
    ASSERT_TRUE(requested);
    monitor->state().openSession(false);  // The menu opened a session between the key and its delivery.
    desktop.settle();
    ASSERT_EQ(tap->sessions.size(), 2U);
    EXPECT_TRUE(tap->sessions[0].isOpen);
    EXPECT_NE(tap->sessions[0].session, *requested);
    EXPECT_EQ(tap->sessions[1], (SessionCall{false, true, false, *requested}));
}

TEST_F(HotKeyMonitorTest, DropsTriggersThatTheTapHasGivenUpAndHandlesTheNextOne) {
    start();
    for (int trigger = 1; trigger <= 2; ++trigger) {
        desktop.keyDown(optionTab);
        desktop.giveUpTapRequest();
    }
    desktop.keyDown(optionShiftTab);
    desktop.settle();
    EXPECT_THAT(commands, ElementsAre(command::Invoke{true}));
    const auto dropped = standard("The trigger was handled too late; no session is opened for it");
    EXPECT_THAT(desktop.takeLog(), ElementsAre(dropped, dropped));
}

TEST_F(HotKeyMonitorTest, EndsASessionWhoseRequestWasGivenUpWhileItOpened) {
    start();
    monitor->onCommand = [&](const SwitcherCommand& command) {
        commands.push_back(command);
        desktop.giveUpTapRequest();
        monitor->state().openSession(true);
    };
    desktop.keyDown(optionTab);
    desktop.settle();
    EXPECT_EQ(disableCount, 1) << "the panel is to be closed";
    EXPECT_FALSE(monitor->state().snapshot().isSwitcherVisible);
    EXPECT_TRUE(desktop.tapIsEnabled());
    monitor->onCommand = [&](const SwitcherCommand&) { monitor->state().openSession(true); };
    desktop.keyDown(optionTab);
    desktop.settle();
    EXPECT_EQ(disableCount, 1) << "the next session stays open";
    EXPECT_TRUE(monitor->state().snapshot().isSwitcherVisible);
}

TEST_F(HotKeyMonitorTest, ToleratesMissingCallbacks) {
    monitor->onCommand = nullptr;
    monitor->onTapDisabled = nullptr;
    monitor->onTapFailed = nullptr;
    start();
    desktop.keyDown(optionTab);
    desktop.disableTapByUserInput();
    desktop.settle();
    EXPECT_TRUE(desktop.tapIsEnabled());
    desktop.setTrusted(false);
    desktop.advance(3s);
    EXPECT_FALSE(monitor->isRunning().get());
}

TEST_F(HotKeyMonitorTest, DropsTheCommandsOfATapThatWasStopped) {
    start();
    desktop.keyDown(optionTab);
    monitor->stop();
    desktop.settle();
    EXPECT_THAT(commands, IsEmpty());
}

TEST_F(HotKeyMonitorTest, DropsTheCommandsOfTheFormerTapAfterARestart) {
    start();
    desktop.keyDown(optionTab);
    desktop.disableTapByTimeout();
    monitor->stop();
    EXPECT_TRUE(monitor->start());
    desktop.settle();
    EXPECT_THAT(commands, IsEmpty());
    EXPECT_EQ(disableCount, 0);
    desktop.keyDown(optionShiftTab);
    desktop.settle();
    EXPECT_THAT(commands, ElementsAre(command::Invoke{true}));
}

TEST_F(HotKeyMonitorTest, PostedWorkDoesNothingOnceTheMonitorIsGone) {
    start();
    desktop.keyDown(optionTab);
    desktop.disableTapByTimeout();
    monitor.reset();
    desktop.settle();
    EXPECT_THAT(commands, IsEmpty());
    EXPECT_EQ(disableCount, 0);
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(HotKeyMonitorTest, DestroyingItWhileRunningRemovesTheTapSilently) {
    start();
    const auto* const tap = record();
    monitor->state().openSession(true);
    monitor.reset();
    EXPECT_THAT(tap->calls, ElementsAre("open", "closed"));
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(HotKeyMonitorTest, MayBeDestroyedByItsOwnCallbacks) {
    start();
    monitor->onCommand = [this](const SwitcherCommand&) { monitor.reset(); };
    desktop.keyDown(optionTab);
    desktop.keyDown(optionTab);
    desktop.settle();
    EXPECT_FALSE(monitor.has_value());

    monitor.emplace(desktop.platform(), SwitcherModifier::option);
    start();
    monitor->onTapDisabled = [this] { monitor.reset(); };
    timeOut();
    EXPECT_FALSE(monitor.has_value());

    monitor.emplace(desktop.platform(), SwitcherModifier::option);
    start();
    monitor->onTapFailed = [this](Failure) { monitor.reset(); };
    desktop.setTrusted(false);
    desktop.advance(3s);
    EXPECT_FALSE(monitor.has_value());
    EXPECT_FALSE(desktop.tapIsInstalled());
}

// --- the tap's health
// -------------------------------------------------------------------------------------------------

TEST_F(HotKeyMonitorTest, ForgetsTheSessionOnTheTapThreadAsSoonAsTheTapIsDisabled) {
    start();
    monitor->state().openSession(true);
    desktop.disableTapByTimeout();
    EXPECT_EQ(monitor->state().snapshot(), (TapState::Snapshot{event_flags::option, false, false}));
    EXPECT_TRUE(monitor->state().reenableRequested());
    EXPECT_EQ(disableCount, 0);
    desktop.settle();
    EXPECT_EQ(disableCount, 1);
    EXPECT_FALSE(monitor->state().reenableRequested());
}

TEST_F(HotKeyMonitorTest, GivesTheKeyboardBackWhenTheTapIsDisabled) {
    start();
    const auto* const tap = record();
    monitor->state().openSession(true);
    desktop.disableTapByTimeout();
    EXPECT_THAT(tap->calls, ElementsAre("open")) << "the tap is told by the main thread alone";
    desktop.settle();
    ASSERT_EQ(tap->sessions.size(), 2U);
    EXPECT_EQ(tap->sessions[1], (SessionCall{false, false, false, tap->sessions[0].session}));
}

TEST_F(HotKeyMonitorTest, TheEndOfASessionThatTheTapHasLostDoesNotNameTheNextOne) {
    start();
    const auto* const tap = record();
    monitor->onCommand = [this](const SwitcherCommand&) { monitor->state().openSession(true); };
    desktop.keyDown(optionTab);
    desktop.settle();
    // The tap loses the keyboard, is enabled again by the periodic check and sees the next trigger; the main thread
    // hears of all that afterwards.
    desktop.disableTapByUserInput();
    desktop.enableTapSilently();
    desktop.keyDown(optionTab);
    const auto requested = desktop.lastTapVerdict().requestedSession;
    ASSERT_TRUE(requested);
    desktop.settle();
    ASSERT_EQ(tap->sessions.size(), 3U);
    EXPECT_EQ(tap->sessions[1], (SessionCall{false, false, false, tap->sessions[0].session}));
    EXPECT_EQ(tap->sessions[2], (SessionCall{true, true, true, *requested}));
    EXPECT_NE(tap->sessions[0].session, *requested);
}

TEST_F(HotKeyMonitorTest, ReenablesAtOnceAfterUserInputDisabledTheTap) {
    start();
    desktop.disableTapByUserInput();
    EXPECT_FALSE(desktop.tapIsEnabled());
    desktop.settle();
    EXPECT_TRUE(desktop.tapIsEnabled());
    EXPECT_EQ(disableCount, 1);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Re-enabling event tap (user-input transition)")));
}

TEST_F(HotKeyMonitorTest, DoesNotCountWhatUserInputDisabled) {
    start();
    for (int time = 0; time < 10; ++time) {
        desktop.disableTapByUserInput();
        desktop.settle();
    }
    EXPECT_THAT(failures, IsEmpty());
    forgetLog();
    timeOut();
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap timed out (1); retrying in 0.250000s")));
}

TEST_F(HotKeyMonitorTest, DoesNotReenableWithoutTrust) {
    start();
    desktop.setTrusted(false);
    desktop.disableTapByUserInput();
    desktop.settle();
    EXPECT_FALSE(desktop.tapIsEnabled());
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(HotKeyMonitorTest, RetriesFourTimeoutsWithGrowingDelaysAndAbandonsTheTapAtTheFifth) {
    start();
    const struct {
        Seconds delay;
        const char* message;
    } retries[] = {{0.25s, "Event tap timed out (1); retrying in 0.250000s"},
                   {0.5s, "Event tap timed out (2); retrying in 0.500000s"},
                   {1s, "Event tap timed out (3); retrying in 1.000000s"},
                   {2s, "Event tap timed out (4); retrying in 2.000000s"}};
    // Between the health checks at 0 and 3 s there is room for the first three, then the fourth follows at 3 s.
    for (const auto& retry : retries) {
        timeOut();
        EXPECT_THAT(desktop.takeLog(), ElementsAre(standard(retry.message)));
        desktop.advance(retry.delay - 0.001s);
        EXPECT_FALSE(desktop.tapIsEnabled()) << retry.message;
        desktop.advance(0.001s);
        EXPECT_TRUE(desktop.tapIsEnabled()) << retry.message;
        EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Re-enabling event tap (timeout backoff)")));
        if (retry.delay == Seconds(1s)) {
            desktop.advance(1.25s);
        }
    }
    EXPECT_THAT(failures, IsEmpty());

    timeOut();
    EXPECT_THAT(failures, ElementsAre(Failure::repeatedTimeouts));
    EXPECT_FALSE(wasRunningAtFailure);
    EXPECT_FALSE(monitor->isRunning().get());
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(disableCount, 5);
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(error("Event tap timed out repeatedly; abandoning it to keep the keyboard usable"),
                            standard("Event tap removed")));
}

TEST_F(HotKeyMonitorTest, CountsFromOneAgainAfterANewStart) {
    start();
    for (int timeout = 0; timeout < 5; ++timeout) {
        timeOut();
    }
    EXPECT_FALSE(monitor->isRunning().get());
    start();
    timeOut();
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap timed out (1); retrying in 0.250000s")));
    EXPECT_TRUE(monitor->isRunning().get());
}

TEST_F(HotKeyMonitorTest, CountsFromOneAgainAfterMoreThanThirtyQuietSeconds) {
    start();
    timeOut();
    desktop.advance(32s);  // Checks up to the one at exactly 30 s, which is not more than 30.
    forgetLog();
    timeOut();
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap timed out (2); retrying in 0.500000s")));
    desktop.advance(34s);  // At 66 s: the check at 63 s came 31 s after the timeout at 32 s.
    forgetLog();
    timeOut();
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Event tap timed out (1); retrying in 0.250000s")));
}

TEST_F(HotKeyMonitorTest, StoppingCancelsAPendingRetry) {
    start();
    timeOut();
    monitor->stop();
    start();
    desktop.disableTapSilently();
    desktop.advance(1s);
    EXPECT_FALSE(desktop.tapIsEnabled()) << "that retry was meant for the former tap";
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(HotKeyMonitorTest, ARetryThatFindsTheTapEnabledSaysNothing) {
    start();
    timeOut();
    desktop.disableTapByUserInput();
    desktop.settle();
    forgetLog();
    desktop.advance(1s);
    EXPECT_TRUE(desktop.tapIsEnabled());
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(HotKeyMonitorTest, FindsASilentlyDisabledTapWithinThreeSeconds) {
    start();
    desktop.disableTapSilently();
    desktop.advance(2.999s);
    EXPECT_FALSE(desktop.tapIsEnabled());
    desktop.advance(0.001s);
    EXPECT_TRUE(desktop.tapIsEnabled());
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Re-enabling event tap (periodic check)")));
}

TEST_F(HotKeyMonitorTest, StopsWithinThreeSecondsOfLosingTrust) {
    start();
    desktop.setTrusted(false);
    desktop.advance(2.999s);
    EXPECT_TRUE(monitor->isRunning().get());
    desktop.advance(0.001s);
    EXPECT_FALSE(monitor->isRunning().get());
    EXPECT_THAT(failures, ElementsAre(Failure::trustRevoked));
    EXPECT_FALSE(wasRunningAtFailure);
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_THAT(desktop.takeLog(), ElementsAre(standard("Accessibility trust lost; stopping the event tap"),
                                               standard("Event tap removed")));
    desktop.advance(60s);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(HotKeyMonitorTest, MayBeRestartedByTheOwnerFromTheFailure) {
    start();
    monitor->onTapFailed = [this](Failure) { EXPECT_TRUE(monitor->start()); };
    for (int timeout = 0; timeout < 5; ++timeout) {
        timeOut();
    }
    EXPECT_TRUE(monitor->isRunning().get());
    EXPECT_TRUE(desktop.tapIsEnabled());
    EXPECT_EQ(desktop.tapStartCount(), 2);
}

}  // namespace
}  // namespace ferrowyn
