#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <future>
#include <iostream>
#include <numeric>
#include <thread>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"
#include "tests/x11/adapter/inventory_fixture.h"

namespace ferrowyn::x11test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A desktop on which the test says what a window manager would.
class InventorySnapshotTest : public testing::Test {
protected:
    InventorySnapshotTest() : InventorySnapshotTest(std::vector<std::string>{}) {}
    explicit InventorySnapshotTest(const std::vector<std::string>& serverArguments)
        : server({"1280x800x24"}, serverArguments), manager(server.display()), parts(server.display()) {
        manager.publishCurrentDesktop(0);
    }

    /// A listed window of type normal, the only one.
    xcb_window_t onlyWindow(int x = 10, int y = 20, int width = 300, int height = 200) {
        const auto window = manager.createWindow(x, y, width, height);
        manager.mapWindow(window);
        manager.publishStacking({window});
        return window;
    }
    std::string titleOf(xcb_window_t window) {
        return parts.accessibleWindow(window).value().title.value_or("(absent)");
    }
    void setTitle(xcb_window_t window, const std::string& property, const std::string& type, const std::string& bytes) {
        manager.set(window, property, type, 8, bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    }
    std::string subroleWith(const std::vector<std::string>& types) {
        const auto window = onlyWindow();
        manager.setAtoms(window, "_NET_WM_WINDOW_TYPE", types);
        return parts.accessibleWindow(window).value().subrole.value_or("(absent)");
    }

    /// Returns when everything that the server has told by now has been handled.
    void settle() {
        bool isAnswered = false;
        parts.events.whenAnswered([&] { isAnswered = true; });
        ASSERT_TRUE(parts.runUntil([&] { return isAnswered; }));
    }

    /// The dialog that a fresh reading says takes the window's input.
    std::optional<WindowId> blockerOf(xcb_window_t window) {
        const auto dialog = parts.accessibleWindow(window).value().blockedBy;
        return dialog ? std::optional(dialog->id) : std::nullopt;
    }
    void setGroup(xcb_window_t window, xcb_window_t leader) {
        const std::uint32_t hints[9] = {1U << 6U, 0, 0, 0, 0, 0, 0, 0, leader};
        manager.set(window, "WM_HINTS", "WM_HINTS", 32, hints, 9);
    }

    PrivateXServer server;
    ScriptedManager manager;
    AdapterParts parts;
};

std::vector<WindowId> idsOf(const InventoryReading& reading) {
    std::vector<WindowId> ids;
    const auto list = reading.windowList().value();
    for (const auto& entry : list) {
        ids.push_back(entry.id.value());
    }
    return ids;
}

TEST_F(InventorySnapshotTest, ListsTheFrontMostWindowFirst) {
    const auto bottom = manager.createWindow();
    const auto middle = manager.createWindow();
    const auto top = manager.createWindow();
    manager.publishStacking({bottom, middle, top});
    EXPECT_THAT(idsOf(*parts.read()), ElementsAre(top, middle, bottom));
}

TEST_F(InventorySnapshotTest, FallsBackOnTheListInMappingOrderOfAManagerThatDoesNotStack) {
    const auto first = manager.createWindow();
    const auto second = manager.createWindow();
    const std::vector<xcb_window_t> list{first, second};
    manager.removeFromRoot("_NET_CLIENT_LIST_STACKING");
    manager.set(manager.root(), "_NET_CLIENT_LIST", "WINDOW", 32, list.data(), 2);
    EXPECT_THAT(idsOf(*parts.read()), ElementsAre(second, first));
}

TEST_F(InventorySnapshotTest, LeavesOutTheDesktopAndDocks) {
    const auto desktop = manager.createWindow();
    const auto dock = manager.createWindow();
    const auto window = manager.createWindow();
    manager.setAtoms(desktop, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_DESKTOP"});
    manager.setAtoms(dock, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_DOCK"});
    manager.publishStacking({desktop, window, dock});
    EXPECT_THAT(idsOf(*parts.read()), ElementsAre(window));
    EXPECT_FALSE(parts.accessibleWindow(dock).has_value());
}

TEST_F(InventorySnapshotTest, TellsFramesInPointsOfTheRoot) {
    const auto window = onlyWindow(30, 40, 300, 200);
    parts.scale = 2.0;
    const auto accessible = parts.accessibleWindow(window).value();
    EXPECT_EQ(accessible.position, (Point{15, 20}));
    EXPECT_EQ(accessible.size, (Size{150, 100}));
    EXPECT_EQ(parts.listedWindow(window)->bounds, (Rect{15, 20, 150, 100}));
}

TEST_F(InventorySnapshotTest, GivesSubrolesByTypeAndTransience) {
    EXPECT_EQ(subroleWith({"_NET_WM_WINDOW_TYPE_NORMAL"}), "AXStandardWindow");
    EXPECT_EQ(subroleWith({"_NET_WM_WINDOW_TYPE_DIALOG"}), "AXDialog");
    EXPECT_EQ(subroleWith({"_TOOLKIT_PRIVATE_TYPE", "_NET_WM_WINDOW_TYPE_DIALOG"}), "AXDialog");
    EXPECT_EQ(subroleWith({"_NET_WM_WINDOW_TYPE_UTILITY"}), "AXFloatingWindow");
    EXPECT_EQ(subroleWith({"_NET_WM_WINDOW_TYPE_NOTIFICATION"}), "AXUnknown");

    const auto untyped = onlyWindow();
    EXPECT_EQ(parts.accessibleWindow(untyped)->subrole, "AXStandardWindow");
    const auto parent = manager.createWindow();
    manager.set(untyped, "WM_TRANSIENT_FOR", "WINDOW", 32, &parent, 1);
    EXPECT_EQ(parts.accessibleWindow(untyped)->subrole, "AXDialog");
}

TEST_F(InventorySnapshotTest, GivesAWindowThatSkipsTheTaskbarAnotherSubrole) {
    const auto window = onlyWindow();
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_SKIP_TASKBAR"});
    EXPECT_EQ(parts.accessibleWindow(window)->subrole, "AXUnknown");
}

TEST_F(InventorySnapshotTest, KeepsADialogThatItsManagerKeepsOffTheTaskbar) {
    const auto window = onlyWindow();
    const auto parent = manager.createWindow();
    manager.set(window, "WM_TRANSIENT_FOR", "WINDOW", 32, &parent, 1);
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_SKIP_TASKBAR"});
    EXPECT_EQ(parts.accessibleWindow(window)->subrole, "AXDialog");
    manager.setAtoms(window, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_NORMAL"});
    EXPECT_EQ(parts.accessibleWindow(window)->subrole, "AXUnknown");
}

TEST_F(InventorySnapshotTest, TellsWhichModalDialogTakesAWindowsInput) {
    const auto document = manager.createWindow();
    const auto dialog = manager.createWindow();
    const auto question = manager.createWindow();
    const auto other = manager.createWindow();
    manager.publishStacking({other, document, dialog, question});
    manager.set(dialog, "WM_TRANSIENT_FOR", "WINDOW", 32, &document, 1);
    EXPECT_EQ(blockerOf(document), std::nullopt) << "it is not modal";
    manager.setAtoms(dialog, "_NET_WM_STATE", {"_NET_WM_STATE_MODAL"});
    EXPECT_EQ(blockerOf(document), dialog);
    EXPECT_EQ(blockerOf(dialog), std::nullopt);
    EXPECT_EQ(blockerOf(other), std::nullopt);
    // A question of the dialog takes the input of both.
    manager.set(question, "WM_TRANSIENT_FOR", "WINDOW", 32, &dialog, 1);
    manager.setAtoms(question, "_NET_WM_STATE", {"_NET_WM_STATE_MODAL"});
    EXPECT_EQ(blockerOf(document), question);
    EXPECT_EQ(blockerOf(dialog), question);
    EXPECT_EQ(blockerOf(question), std::nullopt);
}

TEST_F(InventorySnapshotTest, AModalDialogOfNoWindowInParticularBlocksItsGroup) {
    const auto leader = manager.createWindow();
    const auto document = manager.createWindow();
    const auto palette = manager.createWindow();
    const auto stranger = manager.createWindow();
    const auto dialog = manager.createWindow();
    const auto itsOwn = manager.createWindow();
    manager.publishStacking({stranger, document, palette, dialog, itsOwn});
    for (const auto window : {document, palette, dialog, itsOwn}) {
        setGroup(window, leader);
    }
    manager.setAtoms(dialog, "_NET_WM_STATE", {"_NET_WM_STATE_MODAL"});
    manager.set(itsOwn, "WM_TRANSIENT_FOR", "WINDOW", 32, &dialog, 1);
    const auto root = manager.root();
    for (const bool namesTheRoot : {false, true}) {
        if (namesTheRoot) {
            manager.set(dialog, "WM_TRANSIENT_FOR", "WINDOW", 32, &root, 1);
        }
        EXPECT_EQ(blockerOf(document), dialog);
        EXPECT_EQ(blockerOf(palette), dialog);
        EXPECT_EQ(blockerOf(stranger), std::nullopt);
        EXPECT_EQ(blockerOf(dialog), std::nullopt);
        EXPECT_EQ(blockerOf(itsOwn), std::nullopt) << "the dialog has opened it";
    }
}

TEST_F(InventorySnapshotTest, DialogsThatBlockEachOtherAreNoEndlessQuestion) {
    const auto first = manager.createWindow();
    const auto second = manager.createWindow();
    manager.publishStacking({first, second});
    manager.set(first, "WM_TRANSIENT_FOR", "WINDOW", 32, &second, 1);
    manager.set(second, "WM_TRANSIENT_FOR", "WINDOW", 32, &first, 1);
    manager.setAtoms(first, "_NET_WM_STATE", {"_NET_WM_STATE_MODAL"});
    manager.setAtoms(second, "_NET_WM_STATE", {"_NET_WM_STATE_MODAL"});
    EXPECT_EQ(blockerOf(first), second);
    EXPECT_EQ(blockerOf(second), first);
}

TEST_F(InventorySnapshotTest, KeepsWindowsThatAreAlwaysOnTopInTheNormalLayerAndPutsNotificationsAbove) {
    const auto onTop = onlyWindow();
    manager.setAtoms(onTop, "_NET_WM_STATE", {"_NET_WM_STATE_ABOVE"});
    EXPECT_EQ(parts.listedWindow(onTop)->layer, 0);
    const auto notification = onlyWindow();
    manager.setAtoms(notification, "_NET_WM_WINDOW_TYPE", {"_NET_WM_WINDOW_TYPE_NOTIFICATION"});
    EXPECT_GT(parts.listedWindow(notification)->layer.value(), 0);
}

TEST_F(InventorySnapshotTest, ReadsOpacityAndLeavesItOutWhereTheWindowDoesNotSay) {
    const auto window = onlyWindow();
    EXPECT_EQ(parts.listedWindow(window)->alpha, std::nullopt);
    manager.setCardinal(window, "_NET_WM_WINDOW_OPACITY", 0x80000000U);
    EXPECT_NEAR(parts.listedWindow(window)->alpha.value(), 0.5, 1e-6);
    manager.setCardinal(window, "_NET_WM_WINDOW_OPACITY", 0xFFFFFFFFU);
    EXPECT_EQ(parts.listedWindow(window)->alpha, 1.0);
}

TEST_F(InventorySnapshotTest, CountsAsOnScreenWhatIsMappedHereAndNotHidden) {
    const auto here = manager.createWindow();
    const auto elsewhere = manager.createWindow();
    const auto everywhere = manager.createWindow();
    const auto unmapped = manager.createWindow();
    const auto minimised = manager.createWindow();
    for (const auto window : {here, elsewhere, everywhere, minimised}) {
        manager.mapWindow(window);
    }
    manager.setCardinal(here, "_NET_WM_DESKTOP", 0);
    manager.setCardinal(elsewhere, "_NET_WM_DESKTOP", 1);
    manager.setCardinal(everywhere, "_NET_WM_DESKTOP", 0xFFFFFFFFU);
    manager.setAtoms(minimised, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
    manager.publishStacking({here, elsewhere, everywhere, unmapped, minimised});
    EXPECT_THAT(parts.read()->onScreenWindowIds(), UnorderedElementsAre(here, everywhere));
    EXPECT_EQ(parts.listedWindow(elsewhere)->isOnScreen, false);
    EXPECT_EQ(parts.listedWindow(everywhere)->isOnScreen, true);
}

TEST_F(InventorySnapshotTest, TellsMinimisedAndFullScreenWindows) {
    const auto window = onlyWindow();
    EXPECT_EQ(parts.accessibleWindow(window)->isMinimized, false);
    EXPECT_EQ(parts.accessibleWindow(window)->isFullScreen, false);
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_HIDDEN"});
    EXPECT_EQ(parts.accessibleWindow(window)->isMinimized, true);
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_FULLSCREEN"});
    EXPECT_EQ(parts.accessibleWindow(window)->isMinimized, false);
    EXPECT_EQ(parts.accessibleWindow(window)->isFullScreen, true);
}

TEST_F(InventorySnapshotTest, BelievesTheIconicStateOnlyOfManagersThatHaveNoOther) {
    const auto window = onlyWindow();
    const std::uint32_t iconic[] = {3, 0};
    manager.set(window, "WM_STATE", "WM_STATE", 32, iconic, 2);
    EXPECT_EQ(parts.accessibleWindow(window)->isMinimized, false);
    manager.publishSupported({"_NET_ACTIVE_WINDOW"});
    EXPECT_EQ(parts.accessibleWindow(window)->isMinimized, true);
}

TEST_F(InventorySnapshotTest, PrefersTheUtf8TitleAndFallsBackOnTheOldForms) {
    const auto window = onlyWindow();
    setTitle(window, "WM_NAME", "STRING", "caf\xE9");
    EXPECT_EQ(titleOf(window), "caf\xC3\xA9");
    setTitle(window, "WM_NAME", "COMPOUND_TEXT", "\x1B%G\xE2\x82\xAC\x1B%@ ok");
    EXPECT_EQ(titleOf(window), "\xE2\x82\xAC ok");
    setTitle(window, "WM_NAME", "UTF8_STRING", "\xE2\x82\xAC");
    EXPECT_EQ(titleOf(window), "\xE2\x82\xAC");
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING", "New");
    EXPECT_EQ(titleOf(window), "New");
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING", "");
    EXPECT_EQ(titleOf(window), "");
}

TEST_F(InventorySnapshotTest, RepairsInvalidTitles) {
    const auto window = onlyWindow();
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING",
             "a\xFF"
             "b\xC3");
    EXPECT_EQ(titleOf(window),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD");
}

TEST_F(InventorySnapshotTest, CutsATitleOfMegabytesBetweenCharacters) {
    const auto window = onlyWindow();
    std::string title = "x";  // shifts the three-byte characters so that the cut falls into one
    while (title.size() < 250'000) {
        title += "\xE2\x82\xAC";
    }
    // One request holds no more than this; a title grows to megabytes by appending.
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING", title);
    for (int part = 0; part < 8; ++part) {
        xcb_change_property(manager.connection(), XCB_PROP_MODE_APPEND, window, manager.atom("_NET_WM_NAME"),
                            manager.atom("UTF8_STRING"), 8, static_cast<std::uint32_t>(title.size()), title.data());
    }
    manager.mapWindow(window);
    const auto shown = titleOf(window);
    EXPECT_GT(shown.size(), 1000U);
    EXPECT_LE(shown.size(), 4096U);
    EXPECT_EQ((shown.size() - 1) % 3, 0U);
    EXPECT_EQ(shown, title.substr(0, shown.size()));
}

TEST_F(InventorySnapshotTest, ReadsPropertiesOfTheWrongTypeOrFormatAsAbsent) {
    const auto window = onlyWindow();
    const std::uint32_t number = 1;
    const std::uint16_t halves[] = {1, 0};
    manager.set(window, "_NET_WM_NAME", "CARDINAL", 32, &number, 1);
    manager.set(window, "_NET_WM_WINDOW_TYPE", "STRING", 8, "dock", 4);
    manager.set(window, "_NET_WM_STATE", "ATOM", 16, halves, 2);
    manager.set(window, "_NET_WM_DESKTOP", "CARDINAL", 16, halves, 2);
    manager.set(window, "_NET_WM_WINDOW_OPACITY", "CARDINAL", 8, "\0", 1);
    manager.set(window, "WM_TRANSIENT_FOR", "CARDINAL", 32, &number, 1);
    manager.set(window, "WM_CLASS", "CARDINAL", 32, &number, 1);
    const auto accessible = parts.accessibleWindow(window).value();
    EXPECT_EQ(accessible.title, "");
    EXPECT_EQ(accessible.subrole, "AXStandardWindow");
    EXPECT_EQ(accessible.isMinimized, false);
    const auto entry = parts.listedWindow(window).value();
    EXPECT_EQ(entry.isOnScreen, true);
    EXPECT_EQ(entry.alpha, std::nullopt);
}

TEST_F(InventorySnapshotTest, TakesAListOfTheWrongTypeForNoList) {
    const auto window = onlyWindow();
    ASSERT_THAT(idsOf(*parts.read()), ElementsAre(window));
    manager.setCardinal(manager.root(), "_NET_CLIENT_LIST_STACKING", window);
    EXPECT_THAT(idsOf(*parts.read()), ElementsAre(window)) << "the windows are still those of the latest list";
}

TEST_F(InventorySnapshotTest, SkipsWindowsThatVanishedAfterTheListWasRead) {
    const auto before = manager.createWindow();
    const auto gone = manager.createWindow();
    const auto after = manager.createWindow();
    manager.publishStacking({before, gone, after});
    manager.destroyWindow(gone);
    const auto reading = parts.read();
    EXPECT_THAT(idsOf(*reading), ElementsAre(after, before));
}

TEST_F(InventorySnapshotTest, KeepsTheWindowsWhileAManagerIsBeingReplaced) {
    const auto window = onlyWindow();
    ASSERT_THAT(idsOf(*parts.read()), ElementsAre(window));
    manager.die();
    manager.removeFromRoot("_NET_CLIENT_LIST_STACKING");
    EXPECT_THAT(idsOf(*parts.read()), ElementsAre(window));
    manager.publishStacking({});
    EXPECT_THAT(idsOf(*parts.read()), IsEmpty());
}

TEST_F(InventorySnapshotTest, TakesAListThatItsManagerHasDeletedForEmpty) {
    const auto window = onlyWindow();
    ASSERT_THAT(idsOf(*parts.read()), ElementsAre(window));
    manager.removeFromRoot("_NET_CLIENT_LIST_STACKING");
    EXPECT_THAT(idsOf(*parts.read()), IsEmpty());
}

TEST_F(InventorySnapshotTest, BelievesTheServerMoreThanTheWindowAboutItsProcess) {
    const auto window = onlyWindow();
    manager.setCardinal(window, "_NET_WM_PID", 1);
    EXPECT_EQ(parts.listedWindow(window)->ownerPid, getpid());
}

TEST_F(InventorySnapshotTest, NamesAnApplicationWithoutADesktopFileByItsClass) {
    const auto window = onlyWindow();
    const std::string classes("editor\0Editor\0", 14);
    setTitle(window, "WM_CLASS", "STRING", classes);
    const auto applications = parts.read()->runningApplications();
    ASSERT_EQ(applications.size(), 1U);
    EXPECT_EQ(applications[0].pid, getpid());
    EXPECT_EQ(applications[0].localizedName, "Editor");
    EXPECT_EQ(applications[0].bundleIdentifier, std::nullopt);
    EXPECT_EQ(parts.listedWindow(window)->ownerName, "Editor");
}

TEST_F(InventorySnapshotTest, HasEachChangeWhoseEventTheMainThreadHasNotHandledYet) {
    const auto window = onlyWindow(30, 40, 300, 200);
    ASSERT_TRUE(parts.runUntilKnown(window));
    setTitle(window, "WM_CLASS", "STRING", std::string("viewer\0Viewer\0", 14));
    EXPECT_EQ(parts.listedWindow(window)->ownerName, "Viewer");
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING", "New");
    EXPECT_EQ(titleOf(window), "New");
    manager.setAtoms(window, "_NET_WM_STATE", {"_NET_WM_STATE_FULLSCREEN"});
    EXPECT_EQ(parts.accessibleWindow(window)->isFullScreen, true);
    manager.moveAndResize(window, {31, 42, 303, 204});
    EXPECT_EQ(parts.listedWindow(window)->bounds, (Rect{31, 42, 303, 204}));
    manager.unmapWindow(window);
    EXPECT_EQ(parts.listedWindow(window)->isOnScreen, false);
    manager.mapWindow(window);
    EXPECT_EQ(parts.listedWindow(window)->isOnScreen, true);
    manager.publishActive(window);
    const auto owner = parts.listedWindow(window)->ownerPid.value();
    EXPECT_TRUE(parts.read()->windowsOf(owner, Seconds(1)).value().focusedWindow.has_value());
    const auto next = manager.createWindow();
    manager.publishStacking({window, next});
    EXPECT_THAT(idsOf(*parts.read()), ElementsAre(next, window));
}

TEST_F(InventorySnapshotTest, FollowsAWindowThatIsMovedWithItsFrame) {
    const auto frame = manager.createWindow(100, 50, 320, 240);
    const auto window = onlyWindow();
    manager.reparentWindow(window, frame, 5, 20);
    ASSERT_TRUE(parts.runUntilKnown(window));
    EXPECT_EQ(parts.listedWindow(window)->bounds, (Rect{105, 70, 300, 200}));
    manager.moveAndResize(frame, {200, 60, 320, 240});
    EXPECT_EQ(parts.listedWindow(window)->bounds, (Rect{205, 80, 300, 200}));
}

TEST_F(InventorySnapshotTest, WaitsForTheServerOnceWhereNothingHasChanged) {
    const auto window = onlyWindow();
    ASSERT_TRUE(parts.runUntilKnown(window));
    EXPECT_EQ(titleOf(window), "");
    EXPECT_EQ(parts.read()->roundTrips(), 1);
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING", "New");
    settle();
    EXPECT_EQ(parts.read()->roundTrips(), 1) << "a title that is known to be old is asked for at once";
    EXPECT_EQ(titleOf(window), "New");
}

TEST_F(InventorySnapshotTest, AsksOnceMoreForATitleWhoseEventComesWithTheAnswer) {
    const auto window = onlyWindow();
    ASSERT_TRUE(parts.runUntilKnown(window));
    settle();
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING", "New");
    std::optional<X11DesktopSnapshot> taken;
    // Before the main loop runs, so before it can have heard of the title.
    parts.monitor.takeSnapshot([&](X11DesktopSnapshot snapshot) { taken = std::move(snapshot); });
    ASSERT_TRUE(parts.runUntil([&] { return taken.has_value(); }));
    ASSERT_EQ(taken->windows.size(), 1U);
    EXPECT_EQ(taken->windows.front().title, "New");
    EXPECT_EQ(taken->roundTrips, 2);
}

TEST_F(InventorySnapshotTest, GivesTwoSnapshotsAtOnceTheSameTitle) {
    const auto window = onlyWindow();
    ASSERT_TRUE(parts.runUntilKnown(window));
    settle();
    setTitle(window, "_NET_WM_NAME", "UTF8_STRING", "New");
    std::vector<std::string> titles;
    const auto noteTitle = [&](const X11DesktopSnapshot& snapshot) {
        titles.push_back(snapshot.windows.empty() ? "(no window)" : snapshot.windows.front().title);
    };
    parts.monitor.takeSnapshot(noteTitle);
    parts.monitor.takeSnapshot(noteTitle);
    ASSERT_TRUE(parts.runUntil([&] { return titles.size() == 2; }));
    EXPECT_THAT(titles, ElementsAre("New", "New")) << "the second must not go before the title that the first asks for";
}

TEST_F(InventorySnapshotTest, HasThePositionOfAWindowThatIsMovedWhileItIsReadForTheFirstTime) {
    const auto frame = manager.createWindow(100, 50, 320, 240);
    const auto window = manager.createWindow();
    manager.reparentWindow(window, frame, 5, 20);
    ASSERT_THAT(idsOf(*parts.read()), IsEmpty()) << "and so no reading is under way";
    std::optional<X11DesktopSnapshot> taken;
    const auto moveAndTake = [&] {
        // The window has been asked for; after this round trip its old position is on its way.
        const XcbReply<xcb_get_input_focus_reply_t> served(
            xcb_get_input_focus_reply(parts.events.get(), xcb_get_input_focus(parts.events.get()), nullptr));
        manager.moveAndResize(frame, {200, 60, 320, 240});
        parts.monitor.takeSnapshot([&](X11DesktopSnapshot snapshot) { taken = std::move(snapshot); });
    };
    const auto listed = parts.events.observe([&](const xcb_generic_event_t& event) {
        if (typeOf(event) == XCB_PROPERTY_NOTIFY) {
            // The monitor has begun its reading. When the first answer is there, it asks for the window, and then this.
            parts.events.whenAnswered(moveAndTake);
        }
    });
    manager.publishStacking({window});
    ASSERT_TRUE(parts.runUntil([&] { return taken.has_value(); }));
    ASSERT_EQ(taken->windows.size(), 1U);
    EXPECT_EQ(taken->windows.front().frame.value().x, 205);
    EXPECT_EQ(taken->windows.front().frame.value().y, 80);
}

TEST_F(InventorySnapshotTest, IsNotHeldUpByAWindowThatNeverRests) {
    const auto window = onlyWindow();
    ASSERT_TRUE(parts.runUntilKnown(window));
    const RestlessWindow restless(server.display(), window);
    int announcements = 0;
    // Each reading of the window announces that it has changed.
    const auto counting = parts.workspace.observe([&](const WorkspaceEvent&) { ++announcements; });
    for (int repetition = 0; repetition < 50; ++repetition) {
        bool isTaken = false;
        announcements = 0;
        parts.monitor.takeSnapshot([&](const X11DesktopSnapshot&) {
            isTaken = true;
            EXPECT_LE(announcements, 3) << "the readings under way when it was asked for and answered, and the next";
        });
        ASSERT_TRUE(parts.runUntil([&] { return isTaken; }));
    }
}

/// A loop that takes tasks and never runs them.
class IdleLoop final : public MainLoop {
public:
    [[nodiscard]] TimePoint now() const override { return {}; }
    [[nodiscard]] WallTime wallTime() const override { return {}; }
    void post(Task /*task*/) override { hasTask = true; }
    [[nodiscard]] Subscription after(Seconds /*delay*/, Task /*task*/) override { return {}; }
    [[nodiscard]] Subscription every(Seconds /*interval*/, Task /*task*/) override { return {}; }
    [[nodiscard]] bool isMainThread() const override { return false; }

    std::atomic<bool> hasTask = false;
};

/// Runs work that is expected to wait.
class WaitingThread {
public:
    explicit WaitingThread(std::function<void()> work)
        : thread_([this, work = std::move(work)] {
              id_ = gettid();
              work();
              ended_.set_value();
          }) {}
    ~WaitingThread() {
        if (!hasEnded()) {
            std::cerr << "a thread still waits\n";
            std::abort();  // it cannot be ended
        }
    }
    WaitingThread(const WaitingThread&) = delete;
    WaitingThread& operator=(const WaitingThread&) = delete;

    /// Waits until the thread sleeps while the predicate holds; false when that does not come about.
    [[nodiscard]] bool waitUntilAsleep(const std::function<bool()>& predicate) {
        const Deadline deadline(patience);
        while (!predicate() || !isAsleep()) {
            if (deadline.hasPassed()) {
                return false;
            }
            std::this_thread::sleep_for(milliseconds(1));  // the system reports no event for this
        }
        return true;
    }
    [[nodiscard]] bool hasEnded() { return end_.wait_for(patience) == std::future_status::ready; }

private:
    [[nodiscard]] bool isAsleep() const {
        std::ifstream file("/proc/self/task/" + std::to_string(id_) + "/stat");
        std::string line;
        std::getline(file, line);
        // The state follows the name, which is in brackets.
        const auto name = line.rfind(") ");
        return name != std::string::npos && line.compare(name, 3, ") S") == 0;
    }

    std::atomic<pid_t> id_ = 0;
    std::promise<void> ended_;
    std::future<void> end_ = ended_.get_future();
    std::jthread thread_;
};

TEST_F(InventorySnapshotTest, NobodyWaitsForASnapshotOnceTheDesktopIsClosed) {
    using End = X11DesktopSnapshots::End;
    for (const auto end : {End::connectionLost, End::programEnds}) {
        const bool isValid = end == End::programEnds;
        IdleLoop loop;
        X11DesktopSnapshots snapshots(loop, parts.monitor);
        WaitingThread worker([&] {
            EXPECT_EQ(snapshots.take().isValid, isValid);
            EXPECT_EQ(snapshots.take().isValid, isValid) << "asked for later";
        });
        ASSERT_TRUE(worker.waitUntilAsleep([&] { return loop.hasTask.load(); }));
        snapshots.close(end);
        snapshots.close(End::programEnds);
        EXPECT_TRUE(worker.hasEnded()) << "it waits for ever";
    }
}

TEST_F(InventorySnapshotTest, TellsWhichWindowOfAnApplicationHasTheFocus) {
    const auto first = manager.createWindow();
    const auto second = manager.createWindow();
    manager.publishStacking({first, second});
    EXPECT_EQ(parts.read()->windowsOf(getpid(), Seconds(1))->focusedWindow, std::nullopt);
    manager.publishActive(first);
    const auto focused = parts.read()->windowsOf(getpid(), Seconds(1))->focusedWindow;
    ASSERT_TRUE(focused.has_value());
    EXPECT_EQ(X11Element::windowOf(*focused), first);
}

TEST_F(InventorySnapshotTest, AnswersNothingForAProcessWithoutWindows) {
    EXPECT_FALSE(parts.read()->windowsOf(1, Seconds(1)).has_value());
}

TEST_F(InventorySnapshotTest, ReadsTwoHundredWindowsInOneRoundTripOnceTheyAreKnown) {
    std::vector<xcb_window_t> windows;
    for (int number = 0; number < 200; ++number) {
        const auto window = manager.createWindow(number, number);
        manager.mapWindow(window);
        // Half of them have only the old form of the title.
        setTitle(window, number % 2 == 0 ? "_NET_WM_NAME" : "WM_NAME", number % 2 == 0 ? "UTF8_STRING" : "STRING",
                 "Window " + std::to_string(number));
        windows.push_back(window);
    }
    manager.publishStacking(windows);
    std::vector<double> milliseconds;
    for (int repetition = 0; repetition < 20; ++repetition) {
        const auto start = std::chrono::steady_clock::now();
        const auto reading = parts.read();
        milliseconds.push_back(
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
        ASSERT_EQ(reading->windowList()->size(), 200U);
        EXPECT_TRUE(repetition == 0 || reading->roundTrips() == 1) << reading->roundTrips();
    }
    EXPECT_EQ(titleOf(windows[199]), "Window 199");
    std::ranges::sort(milliseconds);
    RecordProperty("medianMilliseconds", std::to_string(milliseconds[milliseconds.size() / 2]));
    std::cout << "snapshot of 200 windows: median " << milliseconds[milliseconds.size() / 2] << " ms, best "
              << milliseconds.front() << " ms\n";
}

TEST_F(InventorySnapshotTest, AnswersNothingOnceTheServerIsGone) {
    const auto window = onlyWindow();
    ASSERT_THAT(idsOf(*parts.read()), ElementsAre(window));
    server.kill();
    ASSERT_TRUE(parts.runUntil([&] { return parts.isConnectionLost; })) << "the loss is noticed and told once";
    EXPECT_EQ(parts.read()->windowList(), std::nullopt);
    EXPECT_THAT(parts.read()->onScreenWindowIds(), IsEmpty());
    EXPECT_FALSE(parts.runUntil([] { return false; }, milliseconds(200))) << "and the loop goes on without it";
}

/// A server that cannot tell which process a client is.
class InventoryWithoutOwnersTest : public InventorySnapshotTest {
protected:
    InventoryWithoutOwnersTest() : InventorySnapshotTest({"-extension", "X-Resource"}) {}
};

TEST_F(InventoryWithoutOwnersTest, BelievesTheProcessThatTheWindowNames) {
    const auto window = onlyWindow();
    manager.setCardinal(window, "_NET_WM_PID", 4242);
    EXPECT_EQ(parts.listedWindow(window)->ownerPid, 4242);
    setTitle(window, "WM_CLIENT_MACHINE", "STRING", "some.other.machine.example");
    EXPECT_NE(parts.listedWindow(window)->ownerPid, 4242) << "a process number of another machine means nothing here";
}

TEST_F(InventoryWithoutOwnersTest, GroupsWindowsWithoutAProcessByTheirClient) {
    ScriptedManager otherClient(server.display());
    const auto first = manager.createWindow();
    const auto second = manager.createWindow();
    const auto third = otherClient.createWindow();
    manager.publishStacking({first, second, third});
    const auto ownerOfFirst = parts.listedWindow(first)->ownerPid.value();
    EXPECT_GE(ownerOfFirst, X11Owners::firstStandIn) << "no real process has such a number";
    EXPECT_EQ(parts.listedWindow(second)->ownerPid, ownerOfFirst);
    EXPECT_NE(parts.listedWindow(third)->ownerPid, ownerOfFirst);
    EXPECT_EQ(parts.read()->windowsOf(ownerOfFirst, Seconds(1))->windows.size(), 2U);
}

}  // namespace
}  // namespace ferrowyn::x11test
