#include "inventory/window_enumerator.h"
#include "platform/macos/mac_element.h"
#include "platform/macos/mac_window_inventory.h"
#include "platform/main_loop.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using fake::ElementId;
using fake::Value;
using testing::ElementsAre;
using testing::Eq;
using testing::Field;
using testing::IsEmpty;
using testing::Optional;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr Pid notes = 501;

class MacWindowInventoryTest : public MacFixture {
protected:
    std::vector<RunningApplication> running{{.pid = notes, .localizedName = "Notes"}};
    MacWindowNumberLookup lookup;
    MacWindowInventory inventory{[this] { return running; }, lookup};
};

class WindowListTest : public MacWindowInventoryTest {
protected:
    [[nodiscard]] std::optional<std::vector<WindowServerEntry>> windowList() const {
        return inventory.beginReading()->windowList();
    }
    fake::WindowServer::Window& add(std::map<std::string, Value> keys) {
        windowServer.windows.push_back({.keys = std::move(keys)});
        return windowServer.windows.back();
    }
    /// The numbers in the window server's list, in its order.
    [[nodiscard]] std::vector<std::optional<WindowId>> listedIds() const {
        std::vector<std::optional<WindowId>> ids;
        const auto entries = windowList();
        for (const auto& entry : entries.value()) {
            ids.push_back(entry.id);
        }
        return ids;
    }
    static Value number(std::int64_t value) { return {value}; }
};

TEST_F(WindowListTest, EveryKeyIsReadAndOneThatIsMissingOrOfTheWrongTypeStaysAbsentForTheLogicToDecide) {
    add({{"kCGWindowNumber", number(77)},
         {"kCGWindowOwnerName", std::string("Notes")},
         {"kCGWindowIsOnscreen", true},
         {"kCGWindowBounds", Rect{10, 20, 300, 400}},
         {"kCGWindowAlpha", 0.5},
         {"kCGWindowLayer", number(25)},
         {"kCGWindowOwnerPID", number(501)}});
    add({});
    add({{"kCGWindowNumber", std::string("77")},
         {"kCGWindowOwnerName", number(1)},
         {"kCGWindowIsOnscreen", std::string("yes")},
         {"kCGWindowBounds", std::string("10 20 300 400")},
         {"kCGWindowAlpha", true},
         {"kCGWindowLayer", 0.5},
         {"kCGWindowOwnerPID", number(1LL << 40)}});
    const auto entries = windowList();
    ASSERT_THAT(entries, Optional(SizeIs(3)));
    for (const auto& entry : *entries) {
        const bool isRead = &entry == &entries->front();
        EXPECT_EQ(entry.id, isRead ? std::optional<WindowId>(77U) : std::nullopt);
        EXPECT_EQ(entry.ownerName, isRead ? std::optional<std::string>("Notes") : std::nullopt);
        EXPECT_EQ(entry.isOnScreen, isRead ? std::optional(true) : std::nullopt);
        EXPECT_EQ(entry.bounds, isRead ? std::optional(Rect{10, 20, 300, 400}) : std::nullopt);
        EXPECT_EQ(entry.alpha, isRead ? std::optional(0.5) : std::nullopt);
        EXPECT_EQ(entry.layer, isRead ? std::optional(25) : std::nullopt);
        EXPECT_EQ(entry.ownerPid, isRead ? std::optional(501) : std::nullopt);
    }
}

TEST_F(WindowListTest, AnEntryWithoutANumberKeepsItsPlace) {
    add({{"kCGWindowNumber", number(9)}});
    add({});
    add({{"kCGWindowNumber", number(4)}});
    EXPECT_THAT(inventory.windowOrder(), Optional(ElementsAre(Optional(9U), Eq(std::nullopt), Optional(4U))));
    EXPECT_THAT(windowServer.options, ElementsAre(16U));
    windowServer.intruders[2] = std::string("no dictionary");
    EXPECT_THAT(listedIds(), ElementsAre(Optional(9U), Eq(std::nullopt), Eq(std::nullopt), Optional(4U)));
}

TEST_F(WindowListTest, TheListHasAllSpacesAndTheOnScreenListTheActiveOneBothWithoutDesktopElements) {
    add({{"kCGWindowNumber", number(1)}});
    add({{"kCGWindowNumber", number(2)}}).isOnActiveSpace = false;
    add({{"kCGWindowNumber", number(3)}}).isDesktopElement = true;
    EXPECT_THAT(listedIds(), ElementsAre(Optional(1U), Optional(2U)));
    add({});
    EXPECT_THAT(inventory.beginReading()->onScreenWindowIds(), UnorderedElementsAre(1U));
    EXPECT_THAT(windowServer.options, ElementsAre(16U, 17U));
}

TEST_F(WindowListTest, AServerThatSaysNothingOrSendsNoListIsToldFromAnEmptyDesktop) {
    EXPECT_THAT(windowList(), Optional(IsEmpty()));
    EXPECT_THAT(inventory.windowOrder(), Optional(IsEmpty()));
    for (bool fake::WindowServer::*const fault :
         {&fake::WindowServer::isSilent, &fake::WindowServer::answersWithText}) {
        windowServer.reset();
        windowServer.*fault = true;
        EXPECT_EQ(windowList(), std::nullopt);
        EXPECT_EQ(inventory.windowOrder(), std::nullopt);
        EXPECT_THAT(inventory.beginReading()->onScreenWindowIds(), IsEmpty());
    }
}

constexpr Seconds timeout{0.35};
const std::string bulkRequest = "copy AXSubrole AXTitle AXMinimized AXPosition AXSize AXFullScreen of ";

class InventoryReadingTest : public MacWindowInventoryTest {
protected:
    [[nodiscard]] std::optional<AccessibleApplication> read(Pid pid = notes) const {
        return inventory.beginReading()->windowsOf(pid, timeout);
    }
    /// The first of the windows, which there must be.
    [[nodiscard]] AccessibleWindow readFirst() const { return read().value().windows.at(0); }
    ElementId addWindow(std::map<std::string, Value> attributes, std::optional<CGWindowID> number = std::nullopt) {
        return accessibility.addWindow(notes, {.attributes = std::move(attributes), .windowNumber = number});
    }

    ElementId app = accessibility.addApplication(notes);
};

TEST_F(InventoryReadingTest, EveryAttributeOfAWindowIsRead) {
    addWindow({{"AXSubrole", std::string("AXStandardWindow")},
               {"AXTitle", std::string("Shopping")},
               {"AXMinimized", false},
               {"AXFullScreen", true},
               {"AXPosition", Point{10, 20}},
               {"AXSize", Size{300, 400}}},
              77);
    const auto window = readFirst();
    EXPECT_THAT(window.windowNumber, Optional(77U));
    EXPECT_THAT(window.subrole, Optional(Eq("AXStandardWindow")));
    EXPECT_THAT(window.title, Optional(Eq("Shopping")));
    EXPECT_THAT(window.isMinimized, Optional(false));
    EXPECT_THAT(window.isFullScreen, Optional(true));
    EXPECT_THAT(window.position, Optional(Point{10, 20}));
    EXPECT_THAT(window.size, Optional(Size{300, 400}));
}

TEST_F(InventoryReadingTest, AnApplicationThatTheSystemGivesNoHandleOfIsSilent) {
    addWindow({}, 1);
    accessibility.refusesHandles = true;
    EXPECT_FALSE(read().has_value());
    EXPECT_FALSE(inventory.focusedWindowNumber(notes, timeout).has_value());
    EXPECT_THAT(accessibility.takeRequests(), IsEmpty());
}

TEST_F(InventoryReadingTest, EachWindowCostsOneMessageForAllItsAttributes) {
    addWindow({}, 1);
    addWindow({}, 2);
    ASSERT_TRUE(read().has_value());
    EXPECT_THAT(accessibility.takeRequests(),
                ElementsAre("copy AXWindows of 1 within 0.35", "copy AXFocusedWindow of 1 within 0.35",
                            bulkRequest + "2 within 0.35", "number of 2 within 0.35", bulkRequest + "3 within 0.35",
                            "number of 3 within 0.35"));
}

TEST_F(InventoryReadingTest, AnAttributeThatCannotBeReadLeavesTheOthers) {
    addWindow({{"AXSubrole", kAXErrorNoValue},
               {"AXTitle", std::string("Kept")},
               {"AXMinimized", std::string("no Boolean")},
               {"AXPosition", Size{1, 2}},
               {"AXSize", Size{300, 400}}});
    const auto window = readFirst();
    EXPECT_EQ(window.subrole, std::nullopt);
    EXPECT_THAT(window.title, Optional(Eq("Kept")));
    EXPECT_EQ(window.isMinimized, std::nullopt);
    EXPECT_EQ(window.isFullScreen, std::nullopt) << "the window has no such attribute";
    EXPECT_EQ(window.position, std::nullopt);
    EXPECT_THAT(window.size, Optional(Size{300, 400}));
    EXPECT_EQ(window.windowNumber, std::nullopt);
}

TEST_F(InventoryReadingTest, AnApplicationThatKnowsNoBulkIsAskedOneByOneUnlessItAnswersNobody) {
    addWindow({{"AXTitle", std::string("Old")}, {"AXFullScreen", true}}, 77);
    // The error with which an application refuses is not documented.
    for (const auto& [error, isAskedOneByOne] : std::vector<std::pair<AXError, bool>>{
             {kAXErrorNotImplemented, true},
             {kAXErrorFailure, true},
             {kAXErrorAttributeUnsupported, true},
             {kAXErrorIllegalArgument, true},
             {kAXErrorInvalidUIElement, false},
             {kAXErrorAPIDisabled, false},
         }) {
        SCOPED_TRACE(error);
        accessibility.application(notes).bulkError = error;
        static_cast<void>(accessibility.takeRequests());
        const auto window = readFirst();
        EXPECT_EQ(window.title, isAskedOneByOne ? std::optional<std::string>("Old") : std::nullopt);
        EXPECT_EQ(window.isFullScreen, isAskedOneByOne ? std::optional(true) : std::nullopt);
        EXPECT_EQ(window.subrole, std::nullopt);
        EXPECT_THAT(window.windowNumber, Optional(77U));
        EXPECT_THAT(accessibility.takeRequests(), SizeIs(isAskedOneByOne ? 10 : 4));
    }
}

TEST_F(InventoryReadingTest, AnAnswerWithTooFewValuesLeavesTheOthersAbsent) {
    accessibility.application(notes).mostValuesInBulk = 2;
    addWindow({{"AXTitle", std::string("Short")}, {"AXSize", Size{300, 400}}});
    const auto window = readFirst();
    EXPECT_THAT(window.title, Optional(Eq("Short")));
    EXPECT_EQ(window.size, std::nullopt);
    EXPECT_EQ(window.isFullScreen, std::nullopt);
}

TEST_F(InventoryReadingTest, AWindowThatHasGoneIsListedWithoutAnything) {
    const auto gone = addWindow({{"AXTitle", std::string("Gone")}}, 77);
    accessibility.element(gone).isGone = true;
    const auto window = readFirst();
    EXPECT_EQ(window.title, std::nullopt);
    EXPECT_EQ(window.windowNumber, std::nullopt);
}

TEST_F(InventoryReadingTest, AnApplicationWithoutWindowsIsToldFromOneThatDoesNotAnswer) {
    EXPECT_EQ(read(), std::nullopt) << "it knows no \"AXWindows\"";
    accessibility.element(app).attributes["AXWindows"] = std::vector<Value>();
    const auto application = read();
    ASSERT_TRUE(application.has_value());
    EXPECT_THAT(application->windows, IsEmpty());
    accessibility.element(app).attributes["AXWindows"] = std::string("no list");
    EXPECT_EQ(read(), std::nullopt);
    EXPECT_EQ(read(9999), std::nullopt) << "no such process";
}

TEST_F(InventoryReadingTest, WhatIsNoElementAmongTheWindowsIsLeftOut) {
    const auto window = addWindow({{"AXTitle", std::string("Real")}});
    accessibility.element(app).attributes["AXWindows"] =
        std::vector<Value>{Value(std::string("no element")), Value(window), Value()};
    accessibility.element(app).attributes["AXFocusedWindow"] = std::string("no element");
    const auto application = read();
    ASSERT_TRUE(application.has_value());
    EXPECT_THAT(application->windows, ElementsAre(Field(&AccessibleWindow::title, Optional(Eq("Real")))));
    EXPECT_EQ(application->focusedWindow, std::nullopt);
}

TEST_F(InventoryReadingTest, AnApplicationThatHangsAtAnyMomentCostsOneTimeoutHoweverManyWindowsItHas) {
    struct Hang {
        int answersBefore;
        AXError bulkError;
        /// The one that is not answered.
        std::string lastRequest;
    };
    for (const auto& [answersBefore, bulkError, lastRequest] : {
             Hang{0, kAXErrorSuccess, "copy AXWindows of 1"},
             Hang{1, kAXErrorSuccess, "copy AXFocusedWindow of 1"},
             Hang{3, kAXErrorSuccess, "number of 2"},
             Hang{4, kAXErrorSuccess, bulkRequest + "3"},
             Hang{5, kAXErrorNotImplemented, "copy AXMinimized of 2"},
         }) {
        SCOPED_TRACE(lastRequest);
        accessibility.reset();
        accessibility.addApplication(notes);
        for (CGWindowID number = 1; number <= 50; ++number) {
            addWindow({}, number);
        }
        accessibility.application(notes).bulkError = bulkError;
        accessibility.application(notes).requestsUntilItHangs = answersBefore;
        EXPECT_EQ(read(), std::nullopt);
        EXPECT_EQ(accessibility.takeRequests().back(), lastRequest + " within 0.35");
        EXPECT_NEAR(accessibility.secondsWaited(), 0.35, 1e-6);
    }
}

TEST_F(InventoryReadingTest, WithoutTrustNothingIsReadButTheApplicationsAreThoseOfTheWorkspace) {
    addWindow({});
    system.isTrusted = false;
    EXPECT_EQ(read(), std::nullopt);
    const auto reading = inventory.beginReading();
    EXPECT_THAT(reading->runningApplications(), ElementsAre(Field(&RunningApplication::pid, notes)));
    EXPECT_TRUE(reading->hasWindowNumberLookup());
}

TEST_F(InventoryReadingTest, TheFocusedWindowsNumberIsAskedForWithItsOwnTimeout) {
    const auto numberOfFocused = [&] { return inventory.focusedWindowNumber(notes, Seconds(0.1)); };
    auto& focused = accessibility.element(app).attributes["AXFocusedWindow"];
    const auto window = addWindow({}, 77);
    focused = window;
    EXPECT_THAT(numberOfFocused(), Optional(77U));
    EXPECT_THAT(accessibility.takeRequests(),
                ElementsAre("copy AXFocusedWindow of 1 within 0.1", "number of 2 within 0.1"));
    // None; no element; one without a number; no window has the number 0.
    for (const Value& value :
         {Value(kAXErrorNoValue), Value(std::string("no element")), Value(addWindow({})), Value(addWindow({}, 0))}) {
        focused = value;
        EXPECT_EQ(numberOfFocused(), std::nullopt);
    }
    focused = window;
    accessibility.application(notes).hangs = true;
    EXPECT_EQ(numberOfFocused(), std::nullopt);
    EXPECT_NEAR(accessibility.secondsWaited(), 0.1, 1e-6);
}

TEST_F(InventoryReadingTest, ASnapshotMatchesTheServersListWithTheApplicationsWindows) {
    addWindow({{"AXSubrole", std::string("AXStandardWindow")},
               {"AXTitle", std::string("Shopping")},
               {"AXPosition", Point{10, 20}},
               {"AXSize", Size{300, 400}}},
              77);
    windowServer.windows.push_back({.keys = {{"kCGWindowNumber", std::int64_t{77}},
                                             {"kCGWindowBounds", Rect{10, 20, 300, 400}},
                                             {"kCGWindowOwnerPID", std::int64_t{notes}}}});
    const WindowEnumerator enumerator(WindowFilter(1), inventory, desktop.platform().backgroundWork, log);
    WindowEnumerator::Snapshot snapshot;
    desktop.platform().backgroundWork.run([&] { snapshot = enumerator.snapshot(); });
    desktop.settle();
    ASSERT_EQ(snapshot.windows.size(), 1U);
    EXPECT_EQ(snapshot.windows.front().id, 77U);
    EXPECT_EQ(snapshot.windows.front().title, "Shopping");
    EXPECT_TRUE(snapshot.windows.front().isOnActiveSpace);
    EXPECT_THAT(windowServer.options, ElementsAre(16U, 17U));
    EXPECT_THAT(takeLog(), IsEmpty());
}

}  // namespace
}  // namespace ferrowyn
