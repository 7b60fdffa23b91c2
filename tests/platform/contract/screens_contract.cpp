#include "tests/platform/contract/screens_contract.h"

#include <gmock/gmock.h>

namespace ferrowyn::contract {

TEST_P(ScreensContract, TheOnlyScreenIsTheMainOneAndBeginsAtTheOrigin) {
    const auto all = driver->screens().all();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(all[0].frame.x, 0);
    EXPECT_EQ(all[0].frame.y, 0);
    EXPECT_GT(all[0].frame.width, 0);
    EXPECT_GT(all[0].frame.height, 0);
    EXPECT_EQ(driver->screens().main(), all[0]);
}

TEST_P(ScreensContract, ADockAtTheUpperEdgeLeavesTheLowerPartInCoordinatesThatGrowUpward) {
    int count = 0;
    const auto subscription = driver->screens().observe([&] { ++count; });
    const Rect frame = driver->screens().main().value().frame;
    driver->showDock(40);
    const Rect visible{0, 0, frame.width, frame.height - 40};
    ASSERT_TRUE(driver->runUntil([&] { return driver->screens().main()->visibleFrame == visible; }));
    EXPECT_TRUE(driver->runUntil([&] { return count > 0; }));
    EXPECT_EQ(driver->screens().main()->frame, frame);
    driver->removeDock();
    EXPECT_TRUE(driver->runUntil([&] { return driver->screens().main()->visibleFrame == frame; }));
}

TEST_P(ScreensContract, WhoeverIsToldReadsWhatIsNewAndWhoeverLeavesIsToldNothing) {
    int dropped = 0;
    std::optional<Screen> read;
    auto subscription = driver->screens().observe([&] { ++dropped; });
    const auto other = driver->screens().observe([&] { read = driver->screens().main(); });
    subscription.reset();
    driver->showDock(40);
    EXPECT_TRUE(driver->runUntil([&] { return read && read->visibleFrame.height == read->frame.height - 40; }));
    EXPECT_EQ(dropped, 0);
}

}  // namespace ferrowyn::contract
