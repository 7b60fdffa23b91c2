#include "platform/macos/mac_window_list.h"

#include "platform/macos/mac_window_inventory.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

using fake::Value;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;
using testing::Optional;
using testing::UnorderedElementsAre;

class WindowListTest : public MacFixture {
protected:
    fake::WindowServer::Window& add(std::map<std::string, Value> keys) {
        windowServer.windows.push_back({.keys = std::move(keys)});
        return windowServer.windows.back();
    }
    [[nodiscard]] WindowServerEntry readOnly() const {
        const auto entries = window_list::read();
        EXPECT_TRUE(entries.has_value());
        EXPECT_EQ(entries->size(), 1U);
        return entries->front();
    }
    static Value number(std::int64_t value) { return {value}; }
};

TEST_F(WindowListTest, EveryKeyOfAnEntryIsRead) {
    add({{"kCGWindowNumber", number(77)},
         {"kCGWindowOwnerName", std::string("Notes")},
         {"kCGWindowIsOnscreen", true},
         {"kCGWindowBounds", Rect{10, 20, 300, 400}},
         {"kCGWindowAlpha", 0.5},
         {"kCGWindowLayer", number(25)},
         {"kCGWindowOwnerPID", number(501)}});
    const auto entry = readOnly();
    EXPECT_THAT(entry.id, Optional(77U));
    EXPECT_THAT(entry.ownerName, Optional(Eq("Notes")));
    EXPECT_THAT(entry.isOnScreen, Optional(true));
    EXPECT_THAT(entry.bounds, Optional(Rect{10, 20, 300, 400}));
    EXPECT_THAT(entry.alpha, Optional(0.5));
    EXPECT_THAT(entry.layer, Optional(25));
    EXPECT_THAT(entry.ownerPid, Optional(501));
}

TEST_F(WindowListTest, MissingKeysStayAbsentForTheLogicToDecide) {
    add({});
    const auto entry = readOnly();
    EXPECT_EQ(entry.id, std::nullopt);
    EXPECT_EQ(entry.ownerName, std::nullopt);
    EXPECT_EQ(entry.isOnScreen, std::nullopt);
    EXPECT_EQ(entry.bounds, std::nullopt);
    EXPECT_EQ(entry.alpha, std::nullopt);
    EXPECT_EQ(entry.layer, std::nullopt);
    EXPECT_EQ(entry.ownerPid, std::nullopt);
}

TEST_F(WindowListTest, KeysOfTheWrongTypeAreAbsentToo) {
    add({{"kCGWindowNumber", std::string("77")},
         {"kCGWindowOwnerName", number(1)},
         {"kCGWindowIsOnscreen", std::string("yes")},
         {"kCGWindowBounds", std::string("10 20 300 400")},
         {"kCGWindowAlpha", true},
         {"kCGWindowLayer", 0.5},
         {"kCGWindowOwnerPID", number(1LL << 40)}});
    const auto entry = readOnly();
    EXPECT_EQ(entry.id, std::nullopt);
    EXPECT_EQ(entry.ownerName, std::nullopt);
    EXPECT_EQ(entry.isOnScreen, std::nullopt);
    EXPECT_EQ(entry.bounds, std::nullopt);
    EXPECT_EQ(entry.alpha, std::nullopt);
    EXPECT_EQ(entry.layer, std::nullopt);
    EXPECT_EQ(entry.ownerPid, std::nullopt);
}

TEST_F(WindowListTest, AnEntryThatIsNoDictionaryKeepsItsPlace) {
    add({{"kCGWindowNumber", number(1)}});
    add({{"kCGWindowNumber", number(2)}});
    windowServer.intruders[1] = std::string("no dictionary");
    const auto entries = window_list::read();
    ASSERT_TRUE(entries.has_value());
    ASSERT_EQ(entries->size(), 3U);
    EXPECT_THAT((*entries)[0].id, Optional(1U));
    EXPECT_EQ((*entries)[1].id, std::nullopt);
    EXPECT_THAT((*entries)[2].id, Optional(2U));
}

TEST_F(WindowListTest, TheListHasAllSpacesAndNoDesktopElements) {
    add({{"kCGWindowNumber", number(1)}});
    add({{"kCGWindowNumber", number(2)}}).isOnActiveSpace = false;
    add({{"kCGWindowNumber", number(3)}}).isDesktopElement = true;
    const auto entries = window_list::read();
    ASSERT_TRUE(entries.has_value());
    ASSERT_EQ(entries->size(), 2U);
    EXPECT_THAT((*entries)[1].id, Optional(2U));
    EXPECT_THAT(windowServer.options, ElementsAre(16U));
}

TEST_F(WindowListTest, TheOnScreenListHasTheActiveSpaceAlone) {
    add({{"kCGWindowNumber", number(1)}});
    add({{"kCGWindowNumber", number(2)}}).isOnActiveSpace = false;
    add({{"kCGWindowNumber", number(3)}}).isDesktopElement = true;
    add({});
    EXPECT_THAT(window_list::readOnScreenIds(), UnorderedElementsAre(1U));
    EXPECT_THAT(windowServer.options, ElementsAre(17U));
}

TEST_F(WindowListTest, TheOrderCarriesAnEntryWithoutANumber) {
    add({{"kCGWindowNumber", number(9)}});
    add({});
    add({{"kCGWindowNumber", number(4)}});
    const MacWindowNumberLookup lookup;
    const MacWindowInventory inventory([] { return std::vector<RunningApplication>(); }, lookup);
    EXPECT_THAT(inventory.windowOrder(), Optional(ElementsAre(Optional(9U), Eq(std::nullopt), Optional(4U))));
    EXPECT_THAT(windowServer.options, ElementsAre(16U));
}

TEST_F(WindowListTest, ASilentServerIsToldFromAnEmptyDesktop) {
    EXPECT_THAT(window_list::read(), Optional(IsEmpty()));
    EXPECT_THAT(window_list::readOrder(), Optional(IsEmpty()));
    windowServer.isSilent = true;
    EXPECT_EQ(window_list::read(), std::nullopt);
    EXPECT_EQ(window_list::readOrder(), std::nullopt);
    EXPECT_THAT(window_list::readOnScreenIds(), IsEmpty());
}

TEST_F(WindowListTest, AnAnswerThatIsNoListIsNone) {
    windowServer.answersWithText = true;
    EXPECT_EQ(window_list::read(), std::nullopt);
    EXPECT_EQ(window_list::readOrder(), std::nullopt);
    EXPECT_THAT(window_list::readOnScreenIds(), IsEmpty());
}

}  // namespace
}  // namespace ferrowyn
