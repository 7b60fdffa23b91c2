#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"
#include "tests/x11/adapter/inventory_fixture.h"
#include "tests/x11/harness/desktop_processes.h"

namespace ferrowyn::x11test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class InventoryEventsTest : public testing::Test {
protected:
    InventoryEventsTest() : manager(server.display()), parts(server.display()) {
        subscription =
            parts.workspace.observe([this](const WorkspaceEvent& event) { seen.push_back(nameOf(event.kind)); });
    }
    bool runUntilSeen(const std::string& name) {
        return parts.runUntil([&] { return std::ranges::find(seen, name) != seen.end(); });
    }
    bool runUntilHeard(AccessibilityNotification notification) {
        return parts.runUntil([&] { return std::ranges::find(heard, notification) != heard.end(); });
    }
    std::unique_ptr<AccessibilityObserver> observeSelf() {
        return parts.observers.create(
            getpid(), [this](AccessibilityNotification notification) { heard.push_back(notification); });
    }

    /// Every reading of both kinds has the same windows.
    void expectListed(const std::vector<xcb_window_t>& windows) {
        EXPECT_EQ(parts.monitor.model().order(), windows);
        std::vector<xcb_window_t> listed;
        const auto list = parts.read()->windowList();
        ASSERT_TRUE(list.has_value());
        for (const auto& entry : *list) {
            listed.push_back(entry.id.value_or(0));
        }
        EXPECT_EQ(listed, windows);
    }
    struct RaiseOptions {
        std::optional<xcb_window_t> blockedWindow = std::nullopt;
        bool isRetry = false;
    };
    void raise(xcb_window_t window, const RaiseOptions& options = {std::nullopt, false}) {
        parts.control.raiseAndFocus({.pid = getpid(),
                                     .window = X11Element::make(window),
                                     .blockedWindow = options.blockedWindow
                                                          ? std::optional(X11Element::make(*options.blockedWindow))
                                                          : std::nullopt,
                                     .isRetry = options.isRetry});
    }
    [[nodiscard]] ActivationState stateOf(xcb_window_t window) const {
        return parts.control.stateOf(getpid(), X11Element::make(window));
    }
    /// What the adapter has sent to the manager by now.
    std::vector<std::string> takeMessages() {
        settle();
        return manager.takeMessages();
    }
    /// Returns when everything that the server has told by now has been handled.
    void settle() {
        bool isAnswered = false;
        parts.monitor.connection().whenAnswered([&] { isAnswered = true; });
        ASSERT_TRUE(parts.runUntil([&] { return isAnswered; }));
    }

    PrivateXServer server;
    ScriptedManager manager;
    AdapterParts parts;
    std::vector<std::string> seen;
    std::vector<AccessibilityNotification> heard;
    Subscription subscription;
};

TEST_F(InventoryEventsTest, TellsOfApplicationsComingAndGoing) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(runUntilSeen("didLaunch"));
    EXPECT_TRUE(parts.workspace.runningApplication(getpid()).has_value());
    manager.publishStacking({});
    ASSERT_TRUE(runUntilSeen("didTerminate"));
    EXPECT_FALSE(parts.workspace.runningApplication(getpid()).has_value());
}

TEST_F(InventoryEventsTest, TellsAnObserverOfItsWindows) {
    const auto first = manager.createWindow();
    manager.publishStacking({first});
    ASSERT_TRUE(runUntilSeen("didLaunch"));
    const auto observer = observeSelf();
    ASSERT_NE(observer, nullptr);
    for (const auto notification :
         {AccessibilityNotification::windowCreated, AccessibilityNotification::focusedWindowChanged}) {
        observer->addApplicationNotification(notification);
    }
    for (const auto notification :
         {AccessibilityNotification::uiElementDestroyed, AccessibilityNotification::windowMiniaturized,
          AccessibilityNotification::titleChanged}) {
        observer->addWindowNotification(X11Element::make(first), notification);
    }
    const auto second = manager.createWindow();
    manager.publishStacking({first, second});
    EXPECT_TRUE(runUntilHeard(AccessibilityNotification::windowCreated));
    manager.publishActive(first);
    EXPECT_TRUE(runUntilHeard(AccessibilityNotification::focusedWindowChanged));
    manager.set(first, "_NET_WM_NAME", "UTF8_STRING", 8, "New", 3);
    EXPECT_TRUE(runUntilHeard(AccessibilityNotification::titleChanged));
    manager.setAtoms(first, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
    EXPECT_TRUE(runUntilHeard(AccessibilityNotification::windowMiniaturized));
    manager.publishStacking({second});
    EXPECT_TRUE(runUntilHeard(AccessibilityNotification::uiElementDestroyed));
}

TEST_F(InventoryEventsTest, TellsOfATitleThatKeepsChangingAFewTimesASecondAndOfItsLastChange) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(runUntilSeen("didLaunch"));
    const auto observer = observeSelf();
    ASSERT_NE(observer, nullptr);
    observer->addWindowNotification(X11Element::make(window), AccessibilityNotification::titleChanged);
    const auto change = [&](const std::string& title) {
        manager.set(window, "_NET_WM_NAME", "UTF8_STRING", 8, title.data(), static_cast<std::uint32_t>(title.size()));
        manager.set(window, "WM_NAME", "STRING", 8, title.data(), static_cast<std::uint32_t>(title.size()));
    };
    change("Start");
    ASSERT_TRUE(runUntilHeard(AccessibilityNotification::titleChanged));
    heard.clear();
    const auto begin = parts.mainLoop.now();
    int changes = 0;
    const auto chatter = parts.mainLoop.every(Seconds(0.02), [&] { change(std::to_string(++changes)); });
    ASSERT_TRUE(parts.runUntil([&] { return changes >= 60; }));
    const auto mostTold = (parts.mainLoop.now() - begin) / Seconds(0.25);
    settle();
    EXPECT_THAT(heard, testing::SizeIs(testing::AllOf(testing::Ge(2U), testing::Le(mostTold)))) << "a few a second";
    heard.clear();
    EXPECT_TRUE(runUntilHeard(AccessibilityNotification::titleChanged))
        << "the last change is told of when no other follows";
}

TEST_F(InventoryEventsTest, KeepsTheFrontWhileTheActiveWindowIsNoneInPassing) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    manager.publishActive(window);
    ASSERT_TRUE(runUntilSeen("didActivate"));
    seen.clear();
    manager.publishActive(XCB_WINDOW_NONE);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().activeWindow() == XCB_WINDOW_NONE; }));
    EXPECT_EQ(parts.workspace.frontmostPid(), getpid());
    EXPECT_EQ(parts.inventory.focusedWindowNumber(getpid(), Seconds(1)), window);
    EXPECT_THAT(seen, Not(Contains("didActivate")));
}

TEST_F(InventoryEventsTest, ASessionStartsInTheApplicationThatTheEventsHaveNotToldOfYet) {
    const ApplicationProcess other(server, "Other", {"Elsewhere"});
    const auto elsewhere = other.windows().front();
    const auto window = manager.createWindow();
    manager.publishStacking({elsewhere, window});
    manager.publishActive(window);
    ASSERT_TRUE(parts.runUntilKnown(elsewhere));
    ASSERT_TRUE(parts.runUntil([&] { return parts.workspace.frontmostPid() == getpid(); }));
    parts.monitor.startSessionFrom(elsewhere);
    EXPECT_EQ(parts.workspace.frontmostPid(), other.pid());
    // What the events tell later is newer again.
    manager.publishStacking({window, elsewhere});
    EXPECT_TRUE(parts.runUntil([&] { return parts.workspace.frontmostPid() == getpid(); }));
}

TEST_F(InventoryEventsTest, TellsOfAnIconThatComesAfterTheWindow) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    std::vector<xcb_window_t> changed;
    const auto iconChanges =
        parts.monitor.iconChanges().subscribe([&](const xcb_window_t& each) { changed.push_back(each); });
    const std::array<std::uint32_t, 3> icon{1, 1, 0xFF00FF00};
    manager.set(window, "_NET_WM_ICON", "CARDINAL", 32, icon.data(), icon.size());
    ASSERT_TRUE(parts.runUntil([&] { return !changed.empty(); }));
    EXPECT_THAT(changed, testing::ElementsAre(window));
}

TEST_F(InventoryEventsTest, OneRaiseIsOneSequenceOfMessages) {
    const auto window = manager.createWindow();
    const auto dialog = manager.createWindow();
    manager.publishStacking({window, dialog});
    ASSERT_TRUE(parts.runUntilKnown(dialog));
    manager.receiveMessages();
    const auto named = [](const char* message, xcb_window_t each) {
        return std::string(message) + " " + std::to_string(each);
    };
    raise(window);
    EXPECT_THAT(takeMessages(), ElementsAre(named("_NET_ACTIVE_WINDOW", window), named("_NET_RESTACK_WINDOW", window)));
    raise(dialog, {.blockedWindow = window});
    EXPECT_THAT(takeMessages(), ElementsAre(named("_NET_ACTIVE_WINDOW", window), named("_NET_ACTIVE_WINDOW", dialog),
                                            named("_NET_RESTACK_WINDOW", dialog)));
}

TEST_F(InventoryEventsTest, AWindowThatIsRaisedBelowADialogWhichIsGoneGetsTheKeyboard) {
    const auto window = manager.createWindow();
    const auto other = manager.createWindow();
    const auto dialog = manager.createWindow();
    manager.publishStacking({window, other, dialog});
    manager.publishActive(other);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().activeWindow() == other; }));
    manager.destroyWindow(dialog);
    manager.publishStacking({window, other});
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(dialog) == nullptr; }));
    manager.receiveMessages();
    raise(dialog, {.blockedWindow = window});
    EXPECT_THAT(takeMessages(), ElementsAre("_NET_ACTIVE_WINDOW " + std::to_string(window),
                                            "_NET_RESTACK_WINDOW " + std::to_string(window)));
}

TEST_F(InventoryEventsTest, ForAWindowThatIsClosedItsApplicationIsActivatedOnce) {
    const auto gone = manager.createWindow();
    const auto window = manager.createWindow();
    manager.publishStacking({gone, window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    manager.destroyWindow(gone);
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(gone) == nullptr; }));
    manager.receiveMessages();
    raise(gone);
    EXPECT_THAT(takeMessages(), ElementsAre("_NET_ACTIVE_WINDOW " + std::to_string(window)));
    raise(gone, {.isRetry = true});
    EXPECT_THAT(takeMessages(), IsEmpty());
    EXPECT_EQ(stateOf(gone), ActivationState::unreadable);
}

TEST_F(InventoryEventsTest, AWindowOfThisProgramThatIsBroughtToTheFrontIsALaterChoice) {
    const auto window = manager.createWindow();
    const auto own = manager.createWindow();
    manager.publishStacking({own, window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    raise(window);
    EXPECT_EQ(stateOf(window), ActivationState::notActive);
    parts.control.bringToFront(own);
    EXPECT_EQ(stateOf(window), ActivationState::overtaken);
    raise(window);
    EXPECT_EQ(stateOf(window), ActivationState::notActive) << "asked for again";
}

TEST_F(InventoryEventsTest, AWindowHasLostTheKeyboardToNobodyOnlyAfterItHadIt) {
    const auto window = manager.createWindow();
    const auto other = manager.createWindow();
    manager.publishStacking({other, window});
    manager.publishActive(other);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().activeWindow() == other; }));
    raise(window);
    manager.publishActive(XCB_WINDOW_NONE);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().activeWindow() == XCB_WINDOW_NONE; }));
    EXPECT_EQ(stateOf(window), ActivationState::notActive) << "the manager is on the way to it";
    manager.publishActive(window);
    ASSERT_TRUE(parts.runUntil([&] { return stateOf(window) == ActivationState::active; }));
    manager.publishActive(XCB_WINDOW_NONE);
    EXPECT_TRUE(parts.runUntil([&] { return stateOf(window) == ActivationState::lost; }));
    manager.publishActive(other);
    EXPECT_TRUE(parts.runUntil([&] { return stateOf(window) == ActivationState::overtaken; }));
}

TEST_F(InventoryEventsTest, AWindowThatIsOvertakenStaysSoWhenItIsClosed) {
    const auto window = manager.createWindow();
    const auto other = manager.createWindow();
    manager.publishStacking({other, window});
    ASSERT_TRUE(parts.runUntilKnown(other));
    raise(window);
    manager.publishActive(window);
    ASSERT_TRUE(parts.runUntil([&] { return stateOf(window) == ActivationState::active; }));
    manager.publishActive(other);
    ASSERT_TRUE(parts.runUntil([&] { return stateOf(window) == ActivationState::overtaken; }));
    manager.destroyWindow(window);
    manager.publishStacking({other});
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(window) == nullptr; }));
    EXPECT_EQ(stateOf(window), ActivationState::overtaken) << "nothing to raise again";
}

TEST_F(InventoryEventsTest, AClickOnAnotherWindowOvertakesARequestThatNobodyHasAnswered) {
    const auto asked = manager.createWindow();
    const auto front = manager.createWindow();
    const auto other = manager.createWindow();
    manager.publishStacking({asked, other, front});
    manager.publishActive(front);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().activeWindow() == front; }));
    parts.context.noteUserTime(1000);
    raise(asked);
    parts.context.lastClickTime = 1001;
    EXPECT_EQ(stateOf(asked), ActivationState::notActive) << "a click on the window that was in front anyway";
    manager.publishActive(other);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().activeWindow() == other; }));
    EXPECT_EQ(stateOf(asked), ActivationState::overtaken);
    parts.context.lastClickTime = 999;
    EXPECT_EQ(stateOf(asked), ActivationState::notActive) << "perhaps the manager's choice, on the way";
}

TEST_F(InventoryEventsTest, LosesTrustWithTheManagerAndFindsItWithTheNext) {
    X11Trust trust(parts.monitor.model(), parts.context, {}, "", parts.log);
    int hints = 0;
    const auto hinted = trust.observeChanges([&] { ++hints; });
    EXPECT_TRUE(trust.isTrusted());
    manager.die();
    ASSERT_TRUE(parts.runUntil([&] { return hints == 1; }));
    EXPECT_FALSE(trust.isTrusted());
    ScriptedManager next(server.display());
    ASSERT_TRUE(parts.runUntil([&] { return hints == 2; }));
    EXPECT_TRUE(trust.requestWithPrompt());
}

TEST_F(InventoryEventsTest, NoListOfALivingManagerIsAnEmptyOne) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    expectListed({window});
    manager.removeFromRoot("_NET_CLIENT_LIST_STACKING");
    ASSERT_TRUE(runUntilSeen("didTerminate"));
    expectListed({});
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    expectListed({window});
}

TEST_F(InventoryEventsTest, TheWindowsStayUntilTheNextManagerHasListedThem) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    expectListed({window});
    manager.die();
    manager.removeFromRoot("_NET_CLIENT_LIST_STACKING");
    ASSERT_TRUE(parts.runUntil([&] { return !parts.monitor.model().isWindowManagerRunning(); }));
    expectListed({window});
    const auto check = manager.createWindow(-10, -10, 1, 1);
    manager.set(check, "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &check, 1);
    manager.set(manager.root(), "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &check, 1);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().isWindowManagerRunning(); }));
    expectListed({window});
    manager.publishStacking({});
    ASSERT_TRUE(runUntilSeen("didTerminate"));
    expectListed({});
}

TEST_F(InventoryEventsTest, ADestroyedWindowIsGoneThoughItIsStillListed) {
    const auto window = manager.createWindow();
    const auto other = manager.createWindow();
    manager.publishStacking({window, other});
    ASSERT_TRUE(parts.runUntilKnown(other));
    manager.destroyWindow(window);
    ASSERT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(window) == nullptr; }));
    expectListed({other});
}

TEST_F(InventoryEventsTest, AWindowThatJoinsAGroupIsReadAgain) {
    const auto window = manager.createWindow();
    const auto leader = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    seen.clear();
    constexpr std::uint32_t windowGroupHint = 1U << 6U;
    const std::array<std::uint32_t, 9> hints{windowGroupHint, 0, 0, 0, 0, 0, 0, 0, leader};
    manager.set(window, "WM_HINTS", "WM_HINTS", 32, hints.data(), 9);
    EXPECT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(window)->group == leader; }));
    EXPECT_THAT(seen, Contains("activeSpaceDidChange")) << "which of its group's dialogs blocks it";
}

TEST_F(InventoryEventsTest, AMinimisedWindowIsMappedWhenTheFirstTryHasNotRestoredIt) {
    const auto window = manager.createWindow();
    const auto dialog = manager.createWindow();
    manager.publishStacking({window, dialog});
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
    ASSERT_TRUE(parts.runUntil([&] {
        const auto* const facts = parts.monitor.model().find(window);
        return facts != nullptr && facts->isHidden;
    }));
    const auto isMapped = [&] {
        settle();
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
            manager.connection(), xcb_get_window_attributes(manager.connection(), window), nullptr));
        return attributes != nullptr && attributes->map_state != XCB_MAP_STATE_UNMAPPED;
    };
    raise(window);
    raise(window);
    raise(dialog, {.blockedWindow = window});
    EXPECT_FALSE(isMapped()) << "each was the first try of an activation, and the manager may do it";
    raise(window, {.isRetry = true});
    EXPECT_TRUE(isMapped());
}

TEST_F(InventoryEventsTest, ABlockedWindowIsMappedWhenTheFirstTryHasNotRestoredIt) {
    const auto window = manager.createWindow();
    const auto dialog = manager.createWindow();
    manager.publishStacking({window, dialog});
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
    ASSERT_TRUE(parts.runUntil([&] {
        const auto* const facts = parts.monitor.model().find(window);
        return facts != nullptr && facts->isHidden;
    }));
    raise(dialog, {.blockedWindow = window, .isRetry = true});
    settle();
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        manager.connection(), xcb_get_window_attributes(manager.connection(), window), nullptr));
    ASSERT_TRUE(attributes);
    EXPECT_NE(attributes->map_state, XCB_MAP_STATE_UNMAPPED);
}

TEST_F(InventoryEventsTest, AWindowWithTheNumberOfAnotherOneIsReadAnew) {
    std::optional<ApplicationProcess> first(std::in_place, server, "First", std::vector<std::string>{"Old"});
    const auto window = first->windows().front();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    expectListed({window});
    // The server gives the place of a client that has gone, and with it the numbers, to the next one.
    first.reset();
    const ApplicationProcess second(server, "Second", {"New"});
    ASSERT_EQ(second.windows().front(), window);
    manager.publishStacking({window});
    EXPECT_TRUE(parts.runUntil([&] {
        const auto* const facts = parts.monitor.model().find(window);
        return facts != nullptr && facts->pid == second.pid();
    }));
    EXPECT_EQ(parts.listedWindow(window)->ownerPid, second.pid());
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
    EXPECT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(window)->isHidden; })) << "not listened to";
}

TEST_F(InventoryEventsTest, AWindowThatNeverRestsLeavesPausesForARefresh) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    int announcements = 0;
    const auto counting = parts.workspace.observe([&](const WorkspaceEvent&) { ++announcements; });
    const auto begin = parts.mainLoop.now();
    std::uint32_t opacity = 0;
    const auto restless = parts.mainLoop.every(
        Seconds(0.02), [&] { manager.setCardinal(window, "_NET_WM_WINDOW_OPACITY", ++opacity << 24U); });
    ASSERT_TRUE(parts.runUntil([&] { return opacity >= 60; }));
    const auto mostReadings = X11ReadingLimit::burst + (parts.mainLoop.now() - begin) / X11ReadingLimit::interval;
    EXPECT_GE(announcements, X11ReadingLimit::burst) << "none is late as long as they are few";
    EXPECT_LE(announcements, mostReadings + 1);
    EXPECT_EQ(parts.listedWindow(window)->alpha.value(),
              static_cast<double>(opacity << 24U) / std::numeric_limits<std::uint32_t>::max())
        << "a snapshot has the latest change in any case";
}

TEST_F(InventoryEventsTest, AWindowThatNeverRestsIsReadOnceForEachRefresh) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    int snapshots = 0;
    int readingsOfSnapshots = 0;
    int announcements = 0;
    Subscription refresh;
    // As the window index does: a refresh when the announcements have paused.
    const auto refreshing = parts.workspace.observe([&](const WorkspaceEvent&) {
        ++announcements;
        refresh = parts.mainLoop.after(Seconds(0.12), [&] {
            parts.monitor.takeSnapshot([&](const X11DesktopSnapshot& snapshot) {
                ++snapshots;
                // Two round trips for a reading, beside one at the beginning and perhaps one at the end.
                readingsOfSnapshots += (snapshot.roundTrips - 1) / 2;
            });
        });
    });
    const auto begin = parts.mainLoop.now();
    const RestlessWindow restless(server.display(), window);
    ASSERT_TRUE(parts.runUntil([&] { return snapshots >= 20; }, 3 * patience));
    const auto otherReadings = X11ReadingLimit::burst + (parts.mainLoop.now() - begin) / X11ReadingLimit::interval;
    EXPECT_LE(announcements, readingsOfSnapshots + otherReadings + 1);
}

TEST_F(InventoryEventsTest, AClientThatIsFasterThanTheEventsAreHandledDoesNotHoldUpTheLoop) {
    const auto window = manager.createWindow();
    parts.events.watch(window);
    constexpr int far = 20'000;
    int changes = 0;
    bool isServed = false;
    const auto change = [&] {
        ++changes;
        xcb_change_property(manager.connection(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_COMMAND, XCB_ATOM_STRING,
                            8, 0, nullptr);
        for (auto* const connection : {manager.connection(), parts.events.get()}) {
            const XcbReply<xcb_get_input_focus_reply_t> served(
                xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
        }
    };
    // While an event is handled, the next one arrives.
    const auto answering = parts.events.observe([&](const xcb_generic_event_t& event) {
        if (typeOf(event) != XCB_PROPERTY_NOTIFY || isServed || changes >= far) {
            return;
        }
        if (changes == 1) {
            parts.mainLoop.post([&] { isServed = true; });
        }
        change();
    });
    change();
    ASSERT_TRUE(parts.runUntil([&] { return isServed; }, 6 * patience));
    EXPECT_LT(changes, far) << "the task waited until the client paused";
}

TEST_F(InventoryEventsTest, AListMayNameTheRootAndAWindowTwice) {
    const auto window = manager.createWindow();
    const auto other = manager.createWindow();
    manager.publishStacking({manager.root(), window, window, XCB_WINDOW_NONE, other, window});
    ASSERT_TRUE(parts.runUntilKnown(other));
    expectListed({other, window});
}

TEST_F(InventoryEventsTest, WhoNamesAnotherWindowAsTheManagersDoesNotMakeItDeaf) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    for (const auto named : {manager.root(), window, xcb_window_t{1U << 26U}}) {
        manager.set(manager.root(), "_NET_SUPPORTING_WM_CHECK", "WINDOW", 32, &named, 1);
        settle();
        const auto next = manager.createWindow();
        manager.publishStacking({window, next});
        EXPECT_TRUE(parts.runUntilKnown(next)) << named;
        manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
        EXPECT_TRUE(parts.runUntil([&] { return parts.monitor.model().find(window)->isHidden; })) << named;
        manager.setAtoms(window, "_NET_WM_STATE", {});
        EXPECT_TRUE(parts.runUntil([&] { return !parts.monitor.model().find(window)->isHidden; })) << named;
        EXPECT_TRUE(parts.monitor.model().isWindowManagerRunning()) << named;
    }
    manager.die();
    EXPECT_TRUE(parts.runUntil([&] { return !parts.monitor.model().isWindowManagerRunning(); }));
}

TEST_F(InventoryEventsTest, AnEndThatAnotherClientTellsOfIsNone) {
    const auto window = manager.createWindow();
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntilKnown(window));
    xcb_destroy_notify_event_t lie{};
    lie.response_type = XCB_DESTROY_NOTIFY;
    lie.event = window;
    lie.window = window;
    xcb_send_event(manager.connection(), 0, window, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&lie));
    // Heard after the lie.
    manager.set(window, "_NET_WM_NAME", "UTF8_STRING", 8, "New", 3);
    bool isHeard = false;
    const auto titles = parts.monitor.model().notifications().subscribe([&](const X11AccessibilityNotification& told) {
        isHeard = isHeard || told.kind == AccessibilityNotification::titleChanged;
    });
    ASSERT_TRUE(parts.runUntil([&] { return isHeard; }));
    expectListed({window});
}

TEST_F(InventoryEventsTest, AsksForAProbeOnlyWhileTheKeyboardIsHeldElsewhere) {
    int probes = 0;
    parts.context.requestKeyboardProbe = [&] { ++probes; };
    const X11Trust trust(parts.monitor.model(), parts.context, {}, "", parts.log);
    EXPECT_FALSE(trust.isSecureInputActive());
    EXPECT_EQ(probes, 0);
    parts.context.isKeyboardHeldElsewhere = true;
    EXPECT_TRUE(trust.isSecureInputActive());
    EXPECT_EQ(probes, 1);
}

TEST_F(InventoryEventsTest, TheServersTimeIsTheOneOfItsEvents) {
    TestDesktop desktop(server.display());
    const auto before = desktop.serverTime();
    const auto now = serverTimeNow(parts.monitor.connection().get());
    const auto after = desktop.serverTime();
    ASSERT_TRUE(now.has_value());
    EXPECT_GE(*now, before);
    EXPECT_LE(*now, after);
}

}  // namespace
}  // namespace ferrowyn::x11test
