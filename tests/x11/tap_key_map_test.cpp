#include <gtest/gtest.h>

#include <array>
#include <set>
#include <string_view>

#include "platform/x11/x11_key_map.h"

namespace ferrowyn {
namespace {

TEST(X11KeyMapTest, NamesThePhysicalKeyWhateverItsCodeIs) {
    struct Case {
        std::string_view name;
        std::uint16_t code;
    };
    // Every key that the switcher knows, and the digits in the order of the row.
    constexpr std::array cases{Case{"TAB", 48},   Case{"TLDE", 50},  Case{"RTRN", 36},  Case{"KPEN", 76},
                               Case{"ESC", 53},   Case{"HOME", 115}, Case{"END", 119},  Case{"PGUP", 116},
                               Case{"PGDN", 121}, Case{"LEFT", 123}, Case{"RGHT", 124}, Case{"UP", 126},
                               Case{"DOWN", 125}, Case{"AC03", 2},   Case{"AC09", 37},  Case{"BKSP", 51},
                               Case{"AE01", 18},  Case{"AE02", 19},  Case{"AE03", 20},  Case{"AE04", 21},
                               Case{"AE05", 23},  Case{"AE06", 22},  Case{"AE07", 26},  Case{"AE08", 28},
                               Case{"AE09", 25},  Case{"AE10", 29}};
    std::set<std::uint16_t> codes;
    for (const auto& [name, code] : cases) {
        EXPECT_EQ(virtualKeyCode(name, 200), code) << name;
        EXPECT_TRUE(codes.insert(code).second) << name;
    }
}

TEST(X11KeyMapTest, FallsBackToTheEvdevCodeWhereTheMapNamesNothing) {
    EXPECT_EQ(virtualKeyCode("", 23), 48);
    EXPECT_EQ(virtualKeyCode("", 111), 126);
}

TEST(X11KeyMapTest, AKeyWithoutACodeGetsOneAboveAllThatHaveOne) {
    EXPECT_EQ(virtualKeyCode("I172", 172), 128 + 172);
    EXPECT_EQ(virtualKeyCode("", 255), 128 + 255);
}

}  // namespace
}  // namespace ferrowyn
