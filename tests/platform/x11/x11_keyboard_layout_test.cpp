#include <gtest/gtest.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <array>
#include <set>
#include <string_view>

#include "platform/x11/keyboard/x11_keyboard_layout.h"

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

TEST(X11KeyMapTest, FindsKeysThatMoveAndEditByTheirSymbolsAndThoseOfTheKeypad) {
    struct Case {
        xkb_keysym_t symbol;
        xkb_keysym_t twin;
        std::uint16_t code;
    };
    constexpr std::array cases{
        Case{XKB_KEY_Escape, XKB_KEY_Escape, 53},       Case{XKB_KEY_Return, XKB_KEY_Return, 36},
        Case{XKB_KEY_KP_Enter, XKB_KEY_KP_Enter, 76},   Case{XKB_KEY_Tab, XKB_KEY_ISO_Left_Tab, 48},
        Case{XKB_KEY_BackSpace, XKB_KEY_BackSpace, 51}, Case{XKB_KEY_Delete, XKB_KEY_KP_Delete, 117},
        Case{XKB_KEY_Home, XKB_KEY_KP_Home, 115},       Case{XKB_KEY_End, XKB_KEY_KP_End, 119},
        Case{XKB_KEY_Prior, XKB_KEY_KP_Prior, 116},     Case{XKB_KEY_Next, XKB_KEY_KP_Next, 121},
        Case{XKB_KEY_Left, XKB_KEY_KP_Left, 123},       Case{XKB_KEY_Right, XKB_KEY_KP_Right, 124},
        Case{XKB_KEY_Down, XKB_KEY_KP_Down, 125},       Case{XKB_KEY_Up, XKB_KEY_KP_Up, 126}};
    for (const auto& [symbol, twin, code] : cases) {
        EXPECT_EQ(virtualKeyCodeOfSymbol(symbol), code);
        EXPECT_EQ(virtualKeyCodeOfSymbol(twin), code);
        EXPECT_TRUE(isFoundBySymbol(code)) << code;
    }
    // Letters and digits are places, and a keypad that types digits moves nothing.
    for (const auto symbol : {XKB_KEY_d, XKB_KEY_l, XKB_KEY_1, XKB_KEY_KP_4, XKB_KEY_space, XKB_KEY_NoSymbol}) {
        EXPECT_EQ(virtualKeyCodeOfSymbol(symbol), std::nullopt);
    }
    EXPECT_FALSE(isFoundBySymbol(virtualKeyCode("AD01", 24)));
}

}  // namespace
}  // namespace ferrowyn
