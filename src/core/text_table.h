#pragma once

#include <string>
#include <string_view>

#include "core/status_item_texts.h"
#include "core/switcher_modifier.h"
#include "core/window_texts.h"

namespace ferrowyn {

/// The fixed texts that differ from desktop to desktop, one table a desktop, so that a test can compare them. Texts
/// that are the same everywhere stand beside the logic that chooses them.
struct TextTable {
    /// The trigger modifier as the key caps and settings show it: a glyph on a Mac keyboard, a name on a PC keyboard.
    std::string_view optionKey;
    std::string_view commandKey;
    std::string_view controlKey;
    /// What stands for the command key in the session's own shortcuts (⌘D): on a PC keyboard Ctrl acts as Command,
    /// unless Control is the trigger.
    std::string_view sessionCommandKey;
    std::string_view sessionCommandKeyWithControlTrigger;
    /// Between a modifier and its key: nothing between glyphs, "+" between names.
    std::string_view keySeparator;
    std::string_view tabKey;
    /// The keys that switch and that close the panel, as the panel's key caps show them.
    std::string_view returnKey;
    std::string_view escapeKey;

    std::string_view permissionTitle;
    std::string_view permissionExplanation;
    std::string_view permissionButton;

    /// "Other Space" where the desktop has Spaces, "Other Workspace" where it has workspaces.
    std::string_view otherSpaceBadge;

    /// Why the program cannot be registered to start at login.
    std::string_view loginItemUnavailable;
    /// The system refused to register or unregister it.
    std::string_view loginItemRefused;
    /// It is registered, and the user has to allow it.
    std::string_view loginItemApproval;

    /// The status item and its menu.
    const StatusItemTexts& statusItem;
    /// The settings, setup and about windows.
    const WindowTexts& windows;

    [[nodiscard]] std::string_view modifierKey(SwitcherModifier modifier) const;
    [[nodiscard]] std::string_view commandKeyDuringSession(SwitcherModifier trigger) const;
};

[[nodiscard]] const TextTable& macTexts();
/// The same product on an X11 desktop with a PC keyboard.
[[nodiscard]] const TextTable& linuxTexts();

}  // namespace ferrowyn
