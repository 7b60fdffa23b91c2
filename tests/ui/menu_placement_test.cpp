#include "ui/menu/menu_geometry.h"

#include <gtest/gtest.h>

namespace ferrowyn {
namespace {

constexpr Rect screen{0, 0, 1280, 800};
constexpr Size menu{268, 400};

TEST(MenuPlacementTest, BelowAnIconAtTheUpperEdge) {
    EXPECT_EQ(menuPlacement({600, 3, 22, 22}, menu, screen, {0, 28, 1280, 772}), (Rect{600, 29, 268, 400}));
}

TEST(MenuPlacementTest, AboveAnIconAtTheLowerEdge) {
    EXPECT_EQ(menuPlacement({600, 775, 22, 22}, menu, screen, {0, 0, 1280, 772}), (Rect{600, 371, 268, 400}));
}

TEST(MenuPlacementTest, NeverOutsideWhatThePanelsLeave) {
    EXPECT_EQ(menuPlacement({1250, 3, 22, 22}, menu, screen, {0, 28, 1280, 772}), (Rect{1012, 29, 268, 400}));
    EXPECT_EQ(menuPlacement({4, 390, 22, 22}, menu, screen, {40, 0, 1240, 800}), (Rect{40, 0, 268, 400}))
        << "beside a panel at the left edge";
    EXPECT_EQ(menuPlacement({1250, 300, 22, 22}, menu, screen, {0, 0, 1240, 800}), (Rect{972, 326, 268, 400}));
}

TEST(MenuPlacementTest, APointIsWhereTheMenusCornerGoes) {
    EXPECT_EQ(menuPlacement({600, 200, 0, 0}, menu, screen, screen), (Rect{600, 200, 268, 400}));
    EXPECT_EQ(menuPlacement({600, 700, 0, 0}, menu, screen, screen), (Rect{600, 300, 268, 400}));
}

TEST(MenuPlacementTest, OnASecondScreenItStaysThere) {
    const Rect second{1280, 0, 1024, 768};
    EXPECT_EQ(menuPlacement({2290, 740, 20, 20}, menu, second, second), (Rect{2036, 336, 268, 400}));
}

TEST(MenuPlacementTest, AMenuThatIsTooTallShowsItsBeginning) {
    EXPECT_EQ(menuPlacement({600, 775, 22, 22}, {268, 900}, screen, {0, 20, 1280, 752}), (Rect{600, 20, 268, 900}));
}

}  // namespace
}  // namespace ferrowyn
