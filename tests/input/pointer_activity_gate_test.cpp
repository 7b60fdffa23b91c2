#include "input/switcher_controller.h"

namespace ferrowyn {
namespace {

TEST(PointerActivityGateTest, AdmitsEveryHoverAtFirst) {
    PointerActivityGate gate;
    EXPECT_TRUE(gate.admitsHover({5, 5}));
    EXPECT_TRUE(gate.admitsHover({5, 5}));
}

TEST(PointerActivityGateTest, IgnoresHoversWithinThreePointsOfTheAnchor) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    EXPECT_FALSE(gate.admitsHover({100, 100}));
    EXPECT_FALSE(gate.admitsHover({103, 100})) << "exactly three points is not more than three";
    EXPECT_FALSE(gate.admitsHover({102, 102}));
    EXPECT_EQ(gate.anchor, (Point{100, 100}));
}

TEST(PointerActivityGateTest, MeasuresTheDistanceInAStraightLine) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    EXPECT_FALSE(gate.admitsHover({98, 98}));
    EXPECT_TRUE(gate.admitsHover({97.8, 97.8}));
}

TEST(PointerActivityGateTest, StaysLiveOnceThePointerMovedAway) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    EXPECT_TRUE(gate.admitsHover({103.1, 100}));
    EXPECT_FALSE(gate.anchor.has_value());
    EXPECT_TRUE(gate.admitsHover({100, 100})) << "back at the anchor, which is gone";
}

TEST(PointerActivityGateTest, IsArmedAnewByEachKey) {
    PointerActivityGate gate;
    gate.arm({100, 100});
    gate.arm({110, 100});
    EXPECT_FALSE(gate.admitsHover({110, 101}));
    EXPECT_TRUE(gate.admitsHover({100, 100}));
}

}  // namespace
}  // namespace ferrowyn
