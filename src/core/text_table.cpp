#include "core/text_table.h"

#include "core/linux_words.h"
#include "core/phrase.h"

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
        .returnKey = "⏎",
        .escapeKey = "esc",
        .permissionTitle = translatable("Ferrowyn", "Accessibility access is required"),
        .permissionExplanation =
            translatable("Ferrowyn", "Ferrowyn cannot list or focus other apps' windows without it."),
        .permissionButton = translatable("Ferrowyn", "Open System Settings"),
        .otherSpaceBadge = translatable("Ferrowyn", "Other Space"),

        .loginItemUnavailable = translatable("Ferrowyn", "Ferrowyn must be in /Applications to launch at login."),
        .loginItemRefused =
            translatable("Ferrowyn", "macOS refused the request. Move Ferrowyn to /Applications and try again."),
        .loginItemApproval = translatable("Ferrowyn", "Approve Ferrowyn in System Settings → General → Login Items."),

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
        .returnKey = "Return",
        .escapeKey = "Esc",
        .permissionTitle = linux_words::windowManagerRequired,
        // Either of the two may be missing: the text names the way out of both.
        .permissionExplanation =
            translatable("Ferrowyn",
                         "Ferrowyn cannot list or focus other apps' windows without an EWMH window manager and "
                         "XInput 2.2. Start a window manager or update the X server; Ferrowyn then goes on by "
                         "itself."),
        .permissionButton = linux_words::openSetup,
        .otherSpaceBadge = translatable("Ferrowyn", "Other Workspace"),

        .loginItemUnavailable =
            translatable("Ferrowyn", "Ferrowyn must be able to write to the autostart folder to launch at login."),
        .loginItemRefused = translatable(
            "Ferrowyn", "The system refused the request. Make sure that the autostart folder is yours and try again."),
        .loginItemApproval = translatable("Ferrowyn",
                                          "Your desktop keeps Ferrowyn from starting: allow it in the autostart "
                                          "settings, or turn this off and on again."),

        .statusItem = linuxStatusItemTexts(),
        .windows = linuxWindowTexts(),
    };
    return table;
}

}  // namespace ferrowyn
