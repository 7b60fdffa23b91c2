#include "platform/x11/x11_keyboard_layout.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon-x11.h>

#include <algorithm>
#include <string_view>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_key_map.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

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

/// The unshifted symbol; of the first group where none is given: what a key is called, whatever the layout that types.
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
        // A key that the user made an Escape key may still be listed where it was Caps Lock.
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
    // A modifier cannot be told apart from itself: what is Shift or Control is nothing else.
    constexpr std::uint32_t fixed = XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_CONTROL;
    // This one is a lock whether or not a key of the map sets it: it stays set when its key goes.
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
    for (const auto triggerKey : {virtual_key::tab, virtual_key::grave}) {
        if (std::ranges::count(keyCodesOf(triggerKey), keyCode) > 0) {
            return triggerKey;
        }
    }
    // Escape is Escape with any modifier; but what moves on the keypad types when Num Lock or Shift says so.
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
