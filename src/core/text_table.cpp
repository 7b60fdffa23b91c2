#include "core/text_table.h"

namespace ferrowyn {

std::string_view TextTable::modifierKey(SwitcherModifier modifier) const {
    switch (modifier) {
        case SwitcherModifier::option:
            return optionKey;
        case SwitcherModifier::command:
            return commandKey;
        case SwitcherModifier::control:
            return controlKey;
    }
    return optionKey;
}

std::string_view TextTable::commandKeyDuringSession(SwitcherModifier trigger) const {
    return trigger == SwitcherModifier::control ? sessionCommandKeyWithControlTrigger : sessionCommandKey;
}

const TextTable& macTexts() {
    static const TextTable table{
        .optionKey = "⌥",
        .commandKey = "⌘",
        .controlKey = "⌃",
        .sessionCommandKey = "⌘",
        .sessionCommandKeyWithControlTrigger = "⌘",
        .keySeparator = "",
        .tabKey = "⇥",
        .permissionTitle = "Accessibility access is required",
        .permissionExplanation = "Ferrowyn cannot list or focus other apps' windows without it.",
        .permissionButton = "Open System Settings",
        .otherSpaceBadge = "Other Space",

        .loginItemUnavailable = "Ferrowyn must be in /Applications to launch at login.",
        .loginItemRefused = "macOS refused the request. Move Ferrowyn to /Applications and try again.",
        .loginItemApproval = "Approve Ferrowyn in System Settings → General → Login Items.",

        .statusItem = macStatusItemTexts(),
        .windows = macWindowTexts(),
    };
    return table;
}

const TextTable& linuxTexts() {
    static const TextTable table{
        .optionKey = "Alt",
        .commandKey = "Super",
        .controlKey = "Ctrl",
        .sessionCommandKey = "Ctrl",
        .sessionCommandKeyWithControlTrigger = "Super",
        .keySeparator = "+",
        .tabKey = "Tab",
        .permissionTitle = "A window manager is required",
        // The user meets this text in two states, so it names the way out of both.
        .permissionExplanation =
            "Ferrowyn cannot list or focus other apps' windows without an EWMH window manager and "
            "XInput 2.2. Start a window manager or update the X server; Ferrowyn then goes on by "
            "itself.",
        .permissionButton = "Open Setup",
        .otherSpaceBadge = "Other Space",

        .loginItemUnavailable = "Ferrowyn must be able to write to the autostart folder to launch at login.",
        .loginItemRefused =
            "The system refused the request. Make sure that the autostart folder is yours and try again.",
        .loginItemApproval = "Allow Ferrowyn in your desktop's settings for autostart.",

        .statusItem = linuxStatusItemTexts(),
        .windows = linuxWindowTexts(),
    };
    return table;
}

}  // namespace ferrowyn
