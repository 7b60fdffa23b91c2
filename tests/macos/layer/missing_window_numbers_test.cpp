#include "inventory/window_enumerator.h"
#include "platform/macos/mac_element.h"
#include "platform/macos/mac_window_inventory.h"
#include "platform/main_loop.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using fake::Value;
using testing::ElementsAre;

constexpr Pid notes = 501;

/// On a system without the function that says which number a window has: this program is linked without it.
class MissingWindowNumbersTest : public MacFixture {
protected:
    MissingWindowNumbersTest() { accessibility.addApplication(notes); }

    fake::ElementId addWindow(const Rect& frame) {
        return accessibility.addWindow(notes, {.attributes = {{"AXSubrole", std::string("AXStandardWindow")},
                                                              {"AXPosition", Point{frame.x, frame.y}},
                                                              {"AXSize", Size{frame.width, frame.height}}},
                                               .windowNumber = 1234});
    }
    void list(std::int64_t number, const Rect& bounds, Pid pid = notes) {
        windowServer.windows.push_back(
            {.keys = {
                 {"kCGWindowNumber", number}, {"kCGWindowBounds", bounds}, {"kCGWindowOwnerPID", std::int64_t{pid}}}});
    }
    /// The windows of a snapshot, which is taken by a worker.
    [[nodiscard]] std::vector<WindowId> snapshotIds() {
        std::vector<WindowId> ids;
        desktop.platform().backgroundWork.run([&] {
            for (const auto& window : enumerator.snapshot().windows) {
                ids.push_back(window.id);
            }
        });
        desktop.settle();
        return ids;
    }

    MacWindowNumberLookup lookup;
    MacWindowInventory inventory{[] { return std::vector<RunningApplication>{{.pid = notes}}; }, lookup};
    WindowEnumerator enumerator{WindowFilter(1), inventory, desktop.platform().backgroundWork, log};
};

TEST_F(MissingWindowNumbersTest, TheLookupSaysThatItIsMissing) {
    EXPECT_FALSE(lookup.isAvailable());
    EXPECT_FALSE(inventory.beginReading()->hasWindowNumberLookup());
    const auto window = handleOf(addWindow({0, 0, 100, 100}));
    EXPECT_EQ(lookup.numberOf(MacElement::elementOf(window)), std::nullopt);
}

TEST_F(MissingWindowNumbersTest, WindowsAreMatchedByWhereTheyAre) {
    addWindow({100, 100, 800, 600});
    addWindow({500, 100, 800, 600});
    list(7, {101.5, 99, 801, 598});
    list(8, {503, 100, 800, 600});
    list(9, {500, 100, 800, 600}, 777);
    EXPECT_THAT(snapshotIds(), ElementsAre(7U)) << "the second is too far off, or somebody else's";
}

TEST_F(MissingWindowNumbersTest, ThatItIsMissingIsLoggedOnce) {
    addWindow({100, 100, 800, 600});
    list(7, {100, 100, 800, 600});
    EXPECT_THAT(snapshotIds(), ElementsAre(7U));
    EXPECT_THAT(snapshotIds(), ElementsAre(7U));
    EXPECT_THAT(takeLog(), ElementsAre("_AXUIElementGetWindow unavailable; falling back to geometry matching"));
}

}  // namespace
}  // namespace ferrowyn
