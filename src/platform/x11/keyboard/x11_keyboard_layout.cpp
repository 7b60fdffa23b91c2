#include "platform/x11/keyboard/x11_keyboard_layout.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <array>

#include "platform/keyboard_tap.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

struct PhysicalKey {
    std::string_view xkbName;
    std::uint16_t evdevCode;
    std::uint16_t virtualKeyCode;
};

/// X key codes are the kernel's key codes plus this number.
constexpr xkb_keycode_t evdevOffset = 8;

constexpr std::array<PhysicalKey, 114> physicalKeys{{
    // The row of digits.
    {"TLDE", 41, virtual_key::grave},
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
    {"BKSP", 14, virtual_key::backspace},
    // The letters.
    {"TAB", 15, virtual_key::tab},
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
    {"AC03", 32, virtual_key::d},
    {"AC04", 33, 3},
    {"AC05", 34, 5},
    {"AC06", 35, 4},
    {"AC07", 36, 38},
    {"AC08", 37, 40},
    {"AC09", 38, virtual_key::l},
    {"AC10", 39, 41},
    {"AC11", 40, 39},
    {"RTRN", 28, virtual_key::returnKey},
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
    {"ESC", 1, virtual_key::escape},
    {"UP", 103, virtual_key::upArrow},
    {"DOWN", 108, virtual_key::downArrow},
    {"LEFT", 105, virtual_key::leftArrow},
    {"RGHT", 106, virtual_key::rightArrow},
    {"HOME", 102, virtual_key::home},
    {"END", 107, virtual_key::end},
    {"PGUP", 104, virtual_key::pageUp},
    {"PGDN", 109, virtual_key::pageDown},
    {"DELE", 111, virtual_key::forwardDelete},
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
    {"KPEN", 96, virtual_key::keypadEnter},
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
    {XKB_KEY_Escape, virtual_key::escape},
    {XKB_KEY_Return, virtual_key::returnKey},
    {XKB_KEY_KP_Enter, virtual_key::keypadEnter},
    {XKB_KEY_Tab, virtual_key::tab},
    {XKB_KEY_ISO_Left_Tab, virtual_key::tab},
    {XKB_KEY_KP_Tab, virtual_key::tab},
    {XKB_KEY_BackSpace, virtual_key::backspace},
    {XKB_KEY_Delete, virtual_key::forwardDelete},
    {XKB_KEY_KP_Delete, virtual_key::forwardDelete},
    {XKB_KEY_Home, virtual_key::home},
    {XKB_KEY_KP_Home, virtual_key::home},
    {XKB_KEY_End, virtual_key::end},
    {XKB_KEY_KP_End, virtual_key::end},
    {XKB_KEY_Page_Up, virtual_key::pageUp},
    {XKB_KEY_KP_Page_Up, virtual_key::pageUp},
    {XKB_KEY_Page_Down, virtual_key::pageDown},
    {XKB_KEY_KP_Page_Down, virtual_key::pageDown},
    {XKB_KEY_Left, virtual_key::leftArrow},
    {XKB_KEY_KP_Left, virtual_key::leftArrow},
    {XKB_KEY_Right, virtual_key::rightArrow},
    {XKB_KEY_KP_Right, virtual_key::rightArrow},
    {XKB_KEY_Down, virtual_key::downArrow},
    {XKB_KEY_KP_Down, virtual_key::downArrow},
    {XKB_KEY_Up, virtual_key::upArrow},
    {XKB_KEY_KP_Up, virtual_key::upArrow},
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

namespace {

constexpr std::size_t keyCodeCount = 256;
constexpr std::uint32_t modifierCount = 8;

bool isModifierSymbol(xkb_keysym_t symbol) {
    return (symbol >= XKB_KEY_Shift_L && symbol <= XKB_KEY_Hyper_R) ||
           (symbol >= XKB_KEY_ISO_Lock && symbol <= XKB_KEY_ISO_Last_Group_Lock) || symbol == XKB_KEY_Mode_switch ||
           symbol == XKB_KEY_Num_Lock || symbol == XKB_KEY_Scroll_Lock || symbol == XKB_KEY_ISO_Level5_Shift ||
           symbol == XKB_KEY_ISO_Level5_Latch || symbol == XKB_KEY_ISO_Level5_Lock;
}

bool isLockSymbol(xkb_keysym_t symbol) {
    return symbol == XKB_KEY_Caps_Lock || symbol == XKB_KEY_Shift_Lock || symbol == XKB_KEY_Num_Lock ||
           symbol == XKB_KEY_Scroll_Lock;
}

/// The key's symbol in this group without a modifier.
xkb_keysym_t baseSymbol(xkb_keymap* keymap, xkb_keycode_t keyCode, xkb_layout_index_t group = 0) {
    const xkb_keysym_t* symbols = nullptr;
    return xkb_keymap_key_get_syms_by_level(keymap, keyCode, group, 0, &symbols) > 0 ? symbols[0] : XKB_KEY_NoSymbol;
}

}  // namespace

std::unique_ptr<X11KeyboardLayout> X11KeyboardLayout::read(const X11Connection& connection, xkb_context* context) {
    const auto device = xkb_x11_get_core_keyboard_device_id(connection.get());
    if (device < 0) {
        return nullptr;
    }
    std::unique_ptr<X11KeyboardLayout> layout(new X11KeyboardLayout);
    layout->keymap_.reset(
        xkb_x11_keymap_new_from_device(context, connection.get(), device, XKB_KEYMAP_COMPILE_NO_FLAGS));
    if (layout->keymap_ == nullptr) {
        return nullptr;
    }
    layout->readModifiers(connection);
    layout->findTriggerKeys();
    return layout;
}

void X11KeyboardLayout::readModifiers(const X11Connection& connection) {
    modifierKeys_.assign(keyCodeCount, false);
    modifierMap_.assign(keyCodeCount, 0);
    const auto cookie = xcb_get_modifier_mapping(connection.get());
    for (std::size_t keyCode = 0; keyCode < keyCodeCount; ++keyCode) {
        modifierKeys_[keyCode] = isModifierSymbol(baseSymbol(keymap_.get(), static_cast<xkb_keycode_t>(keyCode)));
    }
    const XcbReply<xcb_get_modifier_mapping_reply_t> reply(
        xcb_get_modifier_mapping_reply(connection.get(), cookie, nullptr));
    if (reply == nullptr) {
        return;
    }
    const auto* const keyCodes = xcb_get_modifier_mapping_keycodes(reply.get());
    const std::uint32_t perModifier = reply->keycodes_per_modifier;
    for (std::uint32_t index = 0; index < modifierCount * perModifier; ++index) {
        const auto keyCode = keyCodes[index];
        if (keyCode == 0) {
            continue;
        }
        const std::uint32_t mask = 1U << (index / perModifier);
        const auto symbol = baseSymbol(keymap_.get(), keyCode);
        // A key that the user has changed from Caps Lock to Escape may still be in the modifier map.
        modifierKeys_[keyCode] = modifierKeys_[keyCode] || !virtualKeyCodeOfSymbol(symbol);
        modifierMap_[keyCode] |= mask;
        if (isLockSymbol(symbol)) {
            locks_ |= mask;
        } else if (symbol == XKB_KEY_Alt_L || symbol == XKB_KEY_Alt_R) {
            alt_ |= mask;
        } else if (symbol == XKB_KEY_Super_L || symbol == XKB_KEY_Super_R) {
            super_ |= mask;
        }
    }
    // A real modifier must have only one meaning. Shift and Control come first, then Alt.
    constexpr std::uint32_t fixed = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL;
    // Caps Lock counts also when no key sets it: it stays set when its key is removed from the map.
    locks_ |= XCB_MOD_MASK_LOCK;
    alt_ &= ~fixed;
    super_ &= ~(fixed | alt_);
    locks_ &= ~(fixed | alt_ | super_);
}

std::uint16_t X11KeyboardLayout::physicalKeyCodeOf(xkb_keycode_t keyCode) const {
    const char* const name = xkb_keymap_key_get_name(keymap_.get(), keyCode);
    return virtualKeyCode(name != nullptr ? std::string_view(name) : std::string_view(), keyCode);
}

void X11KeyboardLayout::findTriggerKeys() {
    tabKeys_ = keysWithSymbol(virtual_key::tab);
    graveKeys_ = keysWithSymbol(virtual_key::grave);
}

std::vector<xkb_keycode_t> X11KeyboardLayout::keysWithSymbol(std::uint16_t virtualKeyCode) const {
    const auto isIt = [virtualKeyCode](xkb_keysym_t symbol) {
        return virtualKeyCode == virtual_key::grave ? symbol == XKB_KEY_grave
                                                    : virtualKeyCodeOfSymbol(symbol) == virtualKeyCode;
    };
    std::vector<xkb_keycode_t> withSymbol;
    std::vector<xkb_keycode_t> inPlace;
    for (auto keyCode = xkb_keymap_min_keycode(keymap_.get()); keyCode <= xkb_keymap_max_keycode(keymap_.get());
         ++keyCode) {
        if (physicalKeyCodeOf(keyCode) == virtualKeyCode) {
            inPlace.push_back(keyCode);
        }
        const auto groups = xkb_keymap_num_layouts_for_key(keymap_.get(), keyCode);
        for (xkb_layout_index_t group = 0; group < groups; ++group) {
            if (isIt(baseSymbol(keymap_.get(), keyCode, group))) {
                withSymbol.push_back(keyCode);
                break;
            }
        }
    }
    return withSymbol.empty() ? inPlace : withSymbol;
}

std::uint16_t X11KeyboardLayout::virtualKeyCodeOf(xkb_keycode_t keyCode, const KeySymbols& symbols) const {
    if (const auto code = virtualKeyCodeOfSymbol(symbols.symbol)) {
        return *code;
    }
    for (const auto triggerKey : virtual_key::triggers) {
        if (std::ranges::count(keyCodesOf(triggerKey), keyCode) > 0) {
            return triggerKey;
        }
    }
    // Escape counts with any modifier, but a keypad key that moves types a digit with Num Lock or Shift.
    if (const auto code = virtualKeyCodeOfSymbol(symbols.base); code && !isKeypadMovement(symbols.base)) {
        return *code;
    }
    const auto inPlace = physicalKeyCodeOf(keyCode);
    const bool isElsewhere = inPlace == virtual_key::grave || isFoundBySymbol(inPlace);
    return isElsewhere && symbols.base != XKB_KEY_NoSymbol
               ? static_cast<std::uint16_t>(firstUnknownVirtualKeyCode + keyCode)
               : inPlace;
}

const std::vector<xkb_keycode_t>& X11KeyboardLayout::keyCodesOf(std::uint16_t virtualKeyCode) const {
    return virtualKeyCode == virtual_key::grave ? graveKeys_ : tabKeys_;
}

std::optional<xkb_keycode_t> X11KeyboardLayout::keyCodeOf(std::uint16_t virtualKeyCode) const {
    const auto& keyCodes = keyCodesOf(virtualKeyCode);
    return keyCodes.empty() ? std::nullopt : std::optional(keyCodes.front());
}

bool X11KeyboardLayout::isModifierKey(xkb_keycode_t keyCode) const {
    return keyCode < modifierKeys_.size() && modifierKeys_[keyCode];
}

std::uint32_t X11KeyboardLayout::modifiersOfKey(xkb_keycode_t keyCode) const {
    return keyCode < modifierMap_.size() ? modifierMap_[keyCode] : 0;
}

bool X11KeyboardLayout::isShiftKey(xkb_keycode_t keyCode) const {
    return isModifierKey(keyCode) && (modifiersOfKey(keyCode) & XCB_MOD_MASK_SHIFT) != 0;
}

std::uint64_t X11KeyboardLayout::flagsOf(std::uint32_t realModifiers) const {
    std::uint64_t flags = 0;
    flags |= (realModifiers & XCB_MOD_MASK_SHIFT) != 0 ? event_flags::shift : 0;
    flags |= (realModifiers & XCB_MOD_MASK_CONTROL) != 0 ? event_flags::control : 0;
    flags |= (realModifiers & alt_) != 0 ? event_flags::option : 0;
    flags |= (realModifiers & super_) != 0 ? event_flags::command : 0;
    return flags;
}

std::uint32_t X11KeyboardLayout::modifiersOf(std::uint64_t flags) const {
    std::uint32_t modifiers = 0;
    modifiers |= (flags & event_flags::shift) != 0 ? std::uint32_t{XCB_MOD_MASK_SHIFT} : 0;
    modifiers |= (flags & event_flags::control) != 0 ? std::uint32_t{XCB_MOD_MASK_CONTROL} : 0;
    modifiers |= (flags & event_flags::option) != 0 ? alt_ : 0;
    modifiers |= (flags & event_flags::command) != 0 ? super_ : 0;
    return modifiers;
}

std::vector<std::uint32_t> X11KeyboardLayout::lockCombinations() const {
    std::vector<std::uint32_t> combinations;
    for (std::uint32_t subset = locks_;; subset = (subset - 1) & locks_) {
        combinations.push_back(subset);
        if (subset == 0) {
            return combinations;
        }
    }
}

}  // namespace ferrowyn
