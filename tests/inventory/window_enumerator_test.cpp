#include "inventory/window_enumerator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

#include "platform/main_loop.h"
#include "platform/simulated/simulated_system.h"
#include "platform/simulated/simulated_window_model.h"
#include "tests/inventory/inventory_doubles.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// Iterations on real threads, so that a race between them is there to be found.
class ParallelWork final : public BackgroundWork {
public:
    void run(std::function<void()> work) override { work(); }

    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override {
        std::atomic<std::size_t> next = 0;
        Threads threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.all.emplace_back([&] {
                for (std::size_t index = next++; index < count; index = next++) {
                    iteration(index);
                }
            });
        }
    }

private:
    /// Joined at the end. (Apple's library has a std::jthread only of late.)
    struct Threads {
        Threads() = default;
        ~Threads() {
            for (std::thread& thread : all) {
                thread.join();
            }
        }
        Threads(const Threads&) = delete;
        Threads& operator=(const Threads&) = delete;

        std::vector<std::thread> all;
    };
};

constexpr Pid ownPid = 7;
constexpr Rect ordinaryFrame{100, 100, 800, 600};

const SimulatedLogLine missingLookup{LogLevel::error, "windows",
                                     "_AXUIElementGetWindow unavailable; falling back to geometry matching"};

AccessibleWindow accessibleWindow(WindowId element, std::optional<WindowId> number, Rect frame = ordinaryFrame) {
    return {.element = SimulatedElement::reference(element),
            .windowNumber = number,
            .subrole = "AXStandardWindow",
            .title = "Window " + std::to_string(element),
            .isMinimized = false,
            .isFullScreen = false,
            .position = Point{frame.x, frame.y},
            .size = Size{frame.width, frame.height}};
}

WindowServerEntry entry(std::optional<WindowId> id, Pid pid = 100, Rect bounds = ordinaryFrame) {
    return {
        .id = id, .ownerName = "Mail", .isOnScreen = true, .bounds = bounds, .alpha = 1.0, .layer = 0, .ownerPid = pid};
}

class WindowEnumeratorTest : public ::testing::Test {
protected:
    StubInventory inventory;
    ParallelWork work;
    SimulatedLog log;
    WindowEnumerator enumerator{WindowFilter(ownPid), inventory, work, log};

    void SetUp() override { addApplication(100, "Mail"); }

    void addApplication(Pid pid, std::optional<std::string> name) {
        inventory.applications.push_back({.pid = pid,
                                          .bundleIdentifier = "org.example." + std::to_string(pid),
                                          .localizedName = std::move(name),
                                          .bundleURL = "/applications/" + std::to_string(pid)});
    }
    void addWindow(AccessibleWindow window, Pid pid = 100) {
        inventory.answers[pid].windows.push_back(std::move(window));
    }
    [[nodiscard]] std::vector<WindowId> ids() const {
        std::vector<WindowId> result;
        std::ranges::transform(enumerator.snapshot().windows, std::back_inserter(result), &AppWindow::id);
        return result;
    }
};

TEST_F(WindowEnumeratorTest, DescribesAWindowWithAllItsFields) {
    inventory.list = {{entry(1), entry(2, 100, {0, 0, 400, 300})}};
    inventory.onScreen = {2};
    auto accessible = accessibleWindow(2, 2, {0, 0, 400, 300});
    accessible.isFullScreen = true;
    addWindow(accessible);
    inventory.answers[100].focusedWindow = SimulatedElement::reference(2);

    const auto snapshot = enumerator.snapshot();
    ASSERT_EQ(snapshot.windows.size(), 1U);
    const AppWindow& window = snapshot.windows.front();
    EXPECT_EQ(window.id, 2U);
    EXPECT_EQ(window.axElement, SimulatedElement::reference(2));
    EXPECT_EQ(window.pid, 100);
    EXPECT_EQ(window.bundleIdentifier, "org.example.100");
    EXPECT_EQ(window.appName, "Mail");
    EXPECT_EQ(window.title, "Window 2");
    EXPECT_FALSE(window.isMinimized);
    EXPECT_TRUE(window.isFullScreen);
    EXPECT_TRUE(window.isOnActiveSpace);
    EXPECT_TRUE(window.isAppFocusedWindow);
    EXPECT_EQ(window.frame, (Rect{0, 0, 400, 300}));
    EXPECT_EQ(window.zOrder, 1);
    EXPECT_EQ(window.bundleURL, "/applications/100");
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(WindowEnumeratorTest, AsksEachApplicationOnceWithTheMessagingTimeout) {
    addApplication(200, "Notes");
    addApplication(ownPid, "Ferrowyn");
    static_cast<void>(enumerator.snapshot());
    EXPECT_EQ(inventory.readings, 1);
    EXPECT_EQ(inventory.applicationsAsked, 2) << "never the switcher itself";
    EXPECT_EQ(inventory.lastTimeout, 0.35);
}

TEST_F(WindowEnumeratorTest, AnApplicationThatDoesNotAnswerKeepsItsWindowsAlive) {
    inventory.list = {{entry(1), entry(2)}};
    inventory.onScreen = {2};
    const auto snapshot = enumerator.snapshot();
    EXPECT_THAT(snapshot.windows, IsEmpty());
    EXPECT_THAT(snapshot.liveWindowIDs, UnorderedElementsAre(1, 2));
    EXPECT_THAT(snapshot.onScreenWindowIDs, UnorderedElementsAre(2));
}

TEST_F(WindowEnumeratorTest, AnApplicationWithoutWindowsContributesNothing) {
    inventory.list = {{entry(1)}};
    inventory.answers[100] = {};
    const auto snapshot = enumerator.snapshot();
    EXPECT_THAT(snapshot.windows, IsEmpty());
    EXPECT_THAT(snapshot.liveWindowIDs, UnorderedElementsAre(1));
}

TEST_F(WindowEnumeratorTest, CountsOnlyNormalWindowsOfAdmittedApplicationsAsLive) {
    auto floating = entry(2);
    floating.layer = 3;
    auto withoutLayer = entry(4);
    withoutLayer.layer = std::nullopt;
    inventory.list = {{entry(1), floating, entry(3, 999), withoutLayer}};
    inventory.onScreen = {1, 2, 3};
    const auto snapshot = enumerator.snapshot();
    EXPECT_THAT(snapshot.liveWindowIDs, UnorderedElementsAre(1, 4));
    EXPECT_THAT(snapshot.onScreenWindowIDs, UnorderedElementsAre(1));
}

TEST_F(WindowEnumeratorTest, WithoutAdmittedApplicationsNothingIsLive) {
    inventory.applications.clear();
    inventory.list = {{entry(1), entry(2, 0)}};
    inventory.onScreen = {1, 2};
    const auto snapshot = enumerator.snapshot();
    EXPECT_THAT(snapshot.liveWindowIDs, IsEmpty());
    EXPECT_THAT(snapshot.onScreenWindowIDs, IsEmpty());
}

TEST_F(WindowEnumeratorTest, AsksNoProcessWithoutAPositiveIdentifier) {
    addApplication(0, "Kernel");
    addApplication(-5, "Unknown owner");
    addWindow(accessibleWindow(1, 1), 0);
    addWindow(accessibleWindow(2, 2), -5);
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_EQ(inventory.applicationsAsked, 1);
}

TEST_F(WindowEnumeratorTest, ReportsASilentWindowServer) {
    inventory.list = std::nullopt;
    addWindow(accessibleWindow(1, 1));
    const auto snapshot = enumerator.snapshot();
    EXPECT_THAT(log.take(),
                ElementsAre(SimulatedLogLine{LogLevel::error, "windows", "CGWindowListCopyWindowInfo returned nil"}));
    EXPECT_THAT(snapshot.liveWindowIDs, IsEmpty());
    ASSERT_EQ(snapshot.windows.size(), 1U) << "the lookup still identifies the window";
    EXPECT_EQ(snapshot.windows.front().zOrder, unlistedZOrder);
}

TEST_F(WindowEnumeratorTest, SkipsEntriesWithoutANumberButCountsTheirPosition) {
    inventory.list = {{entry(std::nullopt), entry(5)}};
    addWindow(accessibleWindow(5, 5));
    const auto snapshot = enumerator.snapshot();
    EXPECT_THAT(snapshot.liveWindowIDs, UnorderedElementsAre(5));
    EXPECT_EQ(snapshot.windows.front().zOrder, 1);
}

TEST_F(WindowEnumeratorTest, AnIdListedTwiceKeepsItsLaterEntry) {
    inventory.list = {{entry(5), entry(6), entry(5, 100, {0, 0, 10, 10})}};
    addWindow(accessibleWindow(5, 5));
    EXPECT_THAT(ids(), IsEmpty()) << "the later entry is too small";
    (*inventory.list)[2].bounds = ordinaryFrame;
    EXPECT_EQ(enumerator.snapshot().windows.front().zOrder, 2);
}

TEST_F(WindowEnumeratorTest, FillsInWhatTheServerKeepsToItself) {
    inventory.list = {{WindowServerEntry{.id = 5, .ownerPid = 100}}};
    inventory.onScreen = {5};
    addWindow(accessibleWindow(5, 5));
    const auto snapshot = enumerator.snapshot();
    ASSERT_EQ(snapshot.windows.size(), 1U) << "opaque, on the normal layer, as large as its own frame";
    EXPECT_TRUE(snapshot.windows.front().isOnActiveSpace);
}

TEST_F(WindowEnumeratorTest, AnEntryWithoutAnOwnerBelongsToNoApplication) {
    auto ownerless = entry(5);
    ownerless.ownerPid = std::nullopt;
    inventory.list = {{ownerless}};
    EXPECT_THAT(enumerator.snapshot().liveWindowIDs, IsEmpty());
}

TEST_F(WindowEnumeratorTest, AnUnlistedWindowIsLastAndOnNoSpace) {
    inventory.list = {{entry(2)}};
    inventory.onScreen = {2};
    addWindow(accessibleWindow(1, 1));
    addWindow(accessibleWindow(2, 2));
    const auto snapshot = enumerator.snapshot();
    ASSERT_EQ(snapshot.windows.size(), 2U);
    EXPECT_EQ(snapshot.windows[1].id, 1U);
    EXPECT_EQ(snapshot.windows[1].zOrder, 9223372036854775807);
    EXPECT_FALSE(snapshot.windows[1].isOnActiveSpace);
}

TEST_F(WindowEnumeratorTest, AMinimizedWindowIsOfferedAsIfItWereHere) {
    inventory.list = {{entry(1)}};
    auto minimized = accessibleWindow(1, 1);
    minimized.isMinimized = true;
    addWindow(minimized);
    EXPECT_TRUE(enumerator.snapshot().windows.front().isOnActiveSpace);
    inventory.list = std::vector<WindowServerEntry>{};
    EXPECT_TRUE(enumerator.snapshot().windows.front().isOnActiveSpace) << "listed or not";
}

TEST_F(WindowEnumeratorTest, NamesTheNameless) {
    inventory.applications.front().localizedName = std::nullopt;
    inventory.applications.front().bundleIdentifier = std::nullopt;
    inventory.applications.front().bundleURL = std::nullopt;
    addWindow(accessibleWindow(1, 1));
    const auto window = enumerator.snapshot().windows.front();
    EXPECT_EQ(window.appName, "Unknown");
    EXPECT_EQ(window.bundleIdentifier, std::nullopt);
    EXPECT_EQ(window.bundleURL, std::nullopt);
}

TEST_F(WindowEnumeratorTest, TakesUnreadableAttributesAsEmptyAndFalse) {
    addWindow({.element = SimulatedElement::reference(1), .windowNumber = 1, .subrole = "AXStandardWindow"});
    const auto window = enumerator.snapshot().windows.front();
    EXPECT_EQ(window.title, "");
    EXPECT_FALSE(window.isMinimized);
    EXPECT_FALSE(window.isFullScreen);
    EXPECT_FALSE(window.isAppFocusedWindow) << "no focused window was reported";
    EXPECT_EQ(window.frame, Rect{});
}

TEST_F(WindowEnumeratorTest, FallsBackToTheServersBounds) {
    inventory.list = {{entry(1, 100, {5, 6, 700, 500})}};
    auto withoutSize = accessibleWindow(1, 1);
    withoutSize.size = std::nullopt;
    addWindow(withoutSize);
    EXPECT_EQ(enumerator.snapshot().windows.front().frame, (Rect{5, 6, 700, 500}));
    inventory.answers[100].windows = {accessibleWindow(1, 1, {9, 9, 0, 0})};
    EXPECT_EQ(enumerator.snapshot().windows.front().frame, (Rect{5, 6, 700, 500})) << "an empty frame says nothing";
}

TEST_F(WindowEnumeratorTest, FocusBelongsToOneWindowOnly) {
    inventory.list = {{entry(1), entry(2)}};
    addWindow(accessibleWindow(1, 1));
    addWindow(accessibleWindow(2, 2));
    inventory.answers[100].focusedWindow = SimulatedElement::reference(2);
    const auto snapshot = enumerator.snapshot();
    EXPECT_FALSE(snapshot.windows[0].isAppFocusedWindow);
    EXPECT_TRUE(snapshot.windows[1].isAppFocusedWindow);
}

TEST_F(WindowEnumeratorTest, MatchesByGeometryWhenTheNumberIsUnknown) {
    EXPECT_EQ(WindowEnumerator::geometryTolerance, 2.0);
    inventory.list = {{entry(8, 100, {103, 100, 800, 600}), entry(9, 100, {101.5, 99, 801, 598})}};
    addWindow(accessibleWindow(1, std::nullopt));
    EXPECT_THAT(ids(), ElementsAre(9));
    inventory.answers[100].windows = {accessibleWindow(1, 0)};
    EXPECT_THAT(ids(), ElementsAre(9)) << "the number 0 is none";
    EXPECT_THAT(log.take(), IsEmpty()) << "the lookup is there, it merely failed";
}

TEST_F(WindowEnumeratorTest, MatchesUpToTheToleranceAndNoFurther) {
    addWindow(accessibleWindow(1, std::nullopt));
    for (const Rect bounds : {Rect{102, 102, 802, 602}, Rect{98, 98, 798, 598}}) {
        inventory.list = {{entry(9, 100, bounds)}};
        EXPECT_THAT(ids(), ElementsAre(9));
    }
    for (const Rect bounds :
         {Rect{103, 100, 800, 600}, Rect{100, 97.9, 800, 600}, Rect{100, 100, 802.1, 600}, Rect{100, 100, 800, 597}}) {
        inventory.list = {{entry(9, 100, bounds)}};
        EXPECT_THAT(ids(), IsEmpty());
    }
}

TEST_F(WindowEnumeratorTest, NeverMatchesAnotherProcessesWindow) {
    inventory.list = {{entry(9, 200)}};
    addWindow(accessibleWindow(1, std::nullopt));
    EXPECT_THAT(ids(), IsEmpty());
}

TEST_F(WindowEnumeratorTest, SkipsAWindowThatNothingIdentifies) {
    inventory.list = {{entry(9, 100, {0, 0, 500, 500})}};
    addWindow(accessibleWindow(1, std::nullopt));
    auto withoutFrame = accessibleWindow(2, std::nullopt);
    withoutFrame.position = std::nullopt;
    addWindow(withoutFrame);
    addWindow(accessibleWindow(3, std::nullopt, {0, 0, 0, 0}));
    const SimulatedLogLine skipped{LogLevel::debug, "windows", "Skipping unidentifiable window in Mail"};
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_THAT(log.take(), ElementsAre(skipped, skipped, skipped));
}

TEST_F(WindowEnumeratorTest, SaysOnceThatThereIsNoLookup) {
    inventory.hasLookup = false;
    inventory.list = {{entry(9)}};
    EXPECT_THAT(ids(), IsEmpty());
    EXPECT_THAT(log.take(), IsEmpty()) << "nothing had to be identified yet";

    addWindow(accessibleWindow(1, 77));
    EXPECT_THAT(ids(), ElementsAre(9)) << "matched by geometry, whatever number came along";
    EXPECT_THAT(log.take(), ElementsAre(missingLookup));
    const WindowEnumerator copy = enumerator;
    static_cast<void>(copy.snapshot());
    static_cast<void>(enumerator.snapshot());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(WindowEnumeratorTest, WindowsOnTopOfEachOtherStayTwoWindows) {
    inventory.hasLookup = false;
    inventory.list = {{entry(8), entry(9)}};
    addWindow(accessibleWindow(1, std::nullopt));
    addWindow(accessibleWindow(2, std::nullopt));
    const auto snapshot = enumerator.snapshot();
    ASSERT_EQ(snapshot.windows.size(), 2U);
    EXPECT_EQ(snapshot.windows[0].id, 8U);
    EXPECT_EQ(snapshot.windows[0].title, "Window 1");
    EXPECT_EQ(snapshot.windows[1].id, 9U);
    EXPECT_EQ(snapshot.windows[1].title, "Window 2");
}

TEST_F(WindowEnumeratorTest, AnIdThatAnApplicationReportsTwiceIsOneWindow) {
    inventory.list = {{entry(5)}};
    addWindow(accessibleWindow(1, 5));
    addWindow(accessibleWindow(2, 5));
    const auto snapshot = enumerator.snapshot();
    ASSERT_EQ(snapshot.windows.size(), 1U);
    EXPECT_EQ(snapshot.windows.front().title, "Window 1");
}

TEST_F(WindowEnumeratorTest, AppliesTheFilterToEveryWindow) {
    auto translucent = entry(2);
    translucent.alpha = 0.05;
    auto floating = entry(3);
    floating.layer = 3;
    inventory.list = {{entry(1), translucent, floating, entry(4, 100, {0, 0, 47, 300})}};
    for (const WindowId id : {1U, 2U, 3U, 4U}) {
        addWindow(accessibleWindow(id, id));
    }
    auto untitledDialog = accessibleWindow(5, 5);
    untitledDialog.subrole = "AXDialog";
    untitledDialog.title = " ";
    addWindow(untitledDialog);
    auto palette = accessibleWindow(6, 6);
    palette.subrole = "AXFloatingWindow";
    addWindow(palette);
    EXPECT_THAT(ids(), ElementsAre(1));
}

TEST_F(WindowEnumeratorTest, SortsByStackingThenPlainNameThenId) {
    addApplication(200, "banana");
    addApplication(300, "Zebra");
    inventory.list = {{entry(30), entry(20, 200)}};
    addWindow(accessibleWindow(30, 30));
    addWindow(accessibleWindow(20, 20), 200);
    addWindow(accessibleWindow(12, 12), 200);
    addWindow(accessibleWindow(11, 11), 200);
    addWindow(accessibleWindow(10, 10), 300);
    EXPECT_THAT(ids(), ElementsAre(30, 20, 10, 11, 12)) << "capitals first among the unlisted";
}

TEST_F(WindowEnumeratorTest, GathersFromManyApplicationsAtOnce) {
    std::vector<WindowServerEntry> list;
    std::vector<WindowId> expected;
    for (Pid pid = 1000; pid < 1100; ++pid) {
        const auto id = static_cast<WindowId>(pid);
        addApplication(pid, "App");
        list.push_back(entry(id, pid));
        addWindow(accessibleWindow(id, std::nullopt), pid);
        expected.push_back(id);
    }
    inventory.list = list;
    inventory.hasLookup = false;
    EXPECT_EQ(ids(), expected);
    EXPECT_THAT(log.take(), ElementsAre(missingLookup));
}

}  // namespace
}  // namespace ferrowyn
