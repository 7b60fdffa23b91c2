#include "platform/x11/x11_key_map.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>

namespace ferrowyn {

namespace {

struct PhysicalKey {
    std::string_view xkbName;
    std::uint16_t evdevCode;
    std::uint16_t virtualKeyCode;
};

/// X key codes are the kernel's plus this.
constexpr xkb_keycode_t evdevOffset = 8;

constexpr std::array<PhysicalKey, 114> physicalKeys{{
    // The row of digits.
    {"TLDE", 41, 50},
    {"AE01", 2, 18},
    {"AE02", 3, 19},
    {"AE03", 4, 20},
    {"AE04", 5, 21},
    {"AE05", 6, 23},
    {"AE06", 7, 22},
    {"AE07", 8, 26},
    {"AE08", 9, 28},
    {"AE09", 10, 25},
    {"AE10", 11, 29},
    {"AE11", 12, 27},
    {"AE12", 13, 24},
    {"BKSP", 14, 51},
    // The letters.
    {"TAB", 15, 48},
    {"AD01", 16, 12},
    {"AD02", 17, 13},
    {"AD03", 18, 14},
    {"AD04", 19, 15},
    {"AD05", 20, 17},
    {"AD06", 21, 16},
    {"AD07", 22, 32},
    {"AD08", 23, 34},
    {"AD09", 24, 31},
    {"AD10", 25, 35},
    {"AD11", 26, 33},
    {"AD12", 27, 30},
    {"BKSL", 43, 42},
    {"AC01", 30, 0},
    {"AC02", 31, 1},
    {"AC03", 32, 2},
    {"AC04", 33, 3},
    {"AC05", 34, 5},
    {"AC06", 35, 4},
    {"AC07", 36, 38},
    {"AC08", 37, 40},
    {"AC09", 38, 37},
    {"AC10", 39, 41},
    {"AC11", 40, 39},
    {"RTRN", 28, 36},
    {"LSGT", 86, 10},
    {"AB01", 44, 6},
    {"AB02", 45, 7},
    {"AB03", 46, 8},
    {"AB04", 47, 9},
    {"AB05", 48, 11},
    {"AB06", 49, 45},
    {"AB07", 50, 46},
    {"AB08", 51, 43},
    {"AB09", 52, 47},
    {"AB10", 53, 44},
    {"SPCE", 57, 49},
    // The modifiers.
    {"CAPS", 58, 57},
    {"LFSH", 42, 56},
    {"RTSH", 54, 60},
    {"LCTL", 29, 59},
    {"RCTL", 97, 62},
    {"LALT", 56, 58},
    {"RALT", 100, 61},
    {"LWIN", 125, 55},
    {"RWIN", 126, 54},
    // The keys around them.
    {"ESC", 1, 53},
    {"UP", 103, 126},
    {"DOWN", 108, 125},
    {"LEFT", 105, 123},
    {"RGHT", 106, 124},
    {"HOME", 102, 115},
    {"END", 107, 119},
    {"PGUP", 104, 116},
    {"PGDN", 109, 121},
    {"DELE", 111, 117},
    {"INS", 110, 114},
    {"FK01", 59, 122},
    {"FK02", 60, 120},
    {"FK03", 61, 99},
    {"FK04", 62, 118},
    {"FK05", 63, 96},
    {"FK06", 64, 97},
    {"FK07", 65, 98},
    {"FK08", 66, 100},
    {"FK09", 67, 101},
    {"FK10", 68, 109},
    {"FK11", 87, 103},
    {"FK12", 88, 111},
    {"FK13", 183, 105},
    {"FK14", 184, 107},
    {"FK15", 185, 113},
    {"FK16", 186, 106},
    {"FK17", 187, 64},
    {"FK18", 188, 79},
    {"FK19", 189, 80},
    {"FK20", 190, 90},
    // The keypad.
    {"NMLK", 69, 71},
    {"KPDV", 98, 75},
    {"KPMU", 55, 67},
    {"KPSU", 74, 78},
    {"KPAD", 78, 69},
    {"KPEN", 96, 76},
    {"KPDL", 83, 65},
    {"KPEQ", 117, 81},
    {"KP0", 82, 82},
    {"KP1", 79, 83},
    {"KP2", 80, 84},
    {"KP3", 81, 85},
    {"KP4", 75, 86},
    {"KP5", 76, 87},
    {"KP6", 77, 88},
    {"KP7", 71, 89},
    {"KP8", 72, 91},
    {"KP9", 73, 92},
    // The keys of japanese keyboards.
    {"AE13", 124, 93},
    {"AB11", 89, 94},
    {"HJCV", 123, 102},
    {"HKTG", 122, 104},
}};

struct SymbolKey {
    xkb_keysym_t symbol;
    std::uint16_t virtualKeyCode;
};

constexpr std::array<SymbolKey, 25> symbolKeys{{
    {XKB_KEY_Escape, 53},
    {XKB_KEY_Return, 36},
    {XKB_KEY_KP_Enter, 76},
    {XKB_KEY_Tab, virtual_key::tab},
    {XKB_KEY_ISO_Left_Tab, virtual_key::tab},
    {XKB_KEY_KP_Tab, virtual_key::tab},
    {XKB_KEY_BackSpace, 51},
    {XKB_KEY_Delete, 117},
    {XKB_KEY_KP_Delete, 117},
    {XKB_KEY_Home, 115},
    {XKB_KEY_KP_Home, 115},
    {XKB_KEY_End, 119},
    {XKB_KEY_KP_End, 119},
    {XKB_KEY_Page_Up, 116},
    {XKB_KEY_KP_Page_Up, 116},
    {XKB_KEY_Page_Down, 121},
    {XKB_KEY_KP_Page_Down, 121},
    {XKB_KEY_Left, 123},
    {XKB_KEY_KP_Left, 123},
    {XKB_KEY_Right, 124},
    {XKB_KEY_KP_Right, 124},
    {XKB_KEY_Down, 125},
    {XKB_KEY_KP_Down, 125},
    {XKB_KEY_Up, 126},
    {XKB_KEY_KP_Up, 126},
}};

}  // namespace

std::uint16_t virtualKeyCode(std::string_view xkbName, xkb_keycode_t keyCode) {
    const auto* const found = std::find_if(physicalKeys.begin(), physicalKeys.end(), [&](const PhysicalKey& key) {
        return xkbName.empty() ? key.evdevCode + evdevOffset == keyCode : key.xkbName == xkbName;
    });
    return found != physicalKeys.end() ? found->virtualKeyCode
                                       : static_cast<std::uint16_t>(firstUnknownVirtualKeyCode + keyCode);
}

std::optional<std::uint16_t> virtualKeyCodeOfSymbol(xkb_keysym_t symbol) {
    const auto* const found = std::find_if(symbolKeys.begin(), symbolKeys.end(),
                                           [symbol](const SymbolKey& key) { return key.symbol == symbol; });
    return found != symbolKeys.end() ? std::optional(found->virtualKeyCode) : std::nullopt;
}

bool isFoundBySymbol(std::uint16_t virtualKeyCode) {
    return std::any_of(symbolKeys.begin(), symbolKeys.end(),
                       [virtualKeyCode](const SymbolKey& key) { return key.virtualKeyCode == virtualKeyCode; });
}

bool isKeypadMovement(xkb_keysym_t symbol) {
    return symbol >= XKB_KEY_KP_Home && symbol <= XKB_KEY_KP_Delete;
}

}  // namespace ferrowyn
