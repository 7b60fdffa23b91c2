#include "core/texts.h"

#include <cstddef>

namespace ferrowyn {

std::string Phrase::untranslated() const {
    return withArguments(text, arguments);
}

std::string withArguments(std::string_view text, const std::vector<std::string>& arguments) {
    std::string result;
    // One pass from left to right, because an argument may itself contain a placeholder.
    for (std::size_t position = 0; position < text.size(); ++position) {
        const bool isPlaceholder = text[position] == '%' && position + 1 < text.size() && text[position + 1] >= '1' &&
                                   text[position + 1] <= '9';
        const auto number = isPlaceholder ? static_cast<std::size_t>(text[position + 1] - '1') : arguments.size();
        if (number < arguments.size()) {
            result += arguments[number];
            ++position;
        } else {
            result += text[position];
        }
    }
    return result;
}

namespace {

StatusItemTexts sharedTexts() {
    const auto reEnable = translatable("Ferrowyn", "Re-enable Shortcut");
    return {
        .programName = "Ferrowyn",
        .settingsButton = translatable("Ferrowyn", "Settings"),
        .ready = {.tooltip = "Ferrowyn", .subtitle = translatable("Ferrowyn", "Ready"), .repair = ""},
        .trustRevoked = {.repair = reEnable},
        .repeatedTimeouts = {.tooltip = translatable("Ferrowyn", "Ferrowyn — shortcut disabled by the system"),
                             .subtitle = translatable("Ferrowyn", "Shortcut disabled by the system"),
                             .repair = reEnable},
        .secureInput = {.tooltip = translatable("Ferrowyn", "Ferrowyn — secure input is active, shortcut paused"),
                        .subtitle = translatable("Ferrowyn", "Secure input active — shortcut paused"),
                        .repair = translatable("Ferrowyn", "Waiting for the other app to release it")},
        .triggerAnsweredElsewhere = {.tooltip =
                                         translatable("Ferrowyn", "Ferrowyn — another program answers the shortcut"),
                                     .subtitle = translatable("Ferrowyn", "Another program answers the shortcut"),
                                     .repair = translatable("Ferrowyn", "Choose Another Modifier…")},
        .activationsUnconfirmed = {.tooltip =
                                       translatable("Ferrowyn", "Ferrowyn — chosen windows do not come to the front"),
                                   .subtitle = translatable("Ferrowyn", "Chosen windows do not come to the front"),
                                   .repair = translatable("Ferrowyn", "Restart the apps that do not answer")},
        .openSwitcher = translatable("Ferrowyn", "Open Switcher"),
        .oneWindow = translatable("Ferrowyn", "1 window tracked"),
        .manyWindows = translatable("Ferrowyn", "%1 windows tracked"),
        .layoutSection = translatable("Ferrowyn", "LAYOUT"),
        .launchAtLogin = translatable("Ferrowyn", "Launch at Login"),
        .settings = translatable("Ferrowyn", "Settings…"),
        .setupGuide = translatable("Ferrowyn", "Setup Guide…"),
        .update = translatable("Ferrowyn", "Update to %1…"),
        .noDownloadPage =
            translatable("Ferrowyn", "The update names no secure page to open. Get it where you got Ferrowyn."),
        .about = translatable("Ferrowyn", "About %1"),
        .quit = translatable("Ferrowyn", "Quit Ferrowyn"),
    };
}

StatusItemTexts macVariant() {
    StatusItemTexts texts = sharedTexts();
    texts.accessRequired = {.tooltip = translatable("Ferrowyn", "Ferrowyn — Accessibility access required"),
                            .subtitle = translatable("Ferrowyn", "Accessibility access required"),
                            .repair = translatable("Ferrowyn", "Grant Accessibility Access…")};
    texts.trustRevoked.tooltip = translatable("Ferrowyn", "Ferrowyn — Accessibility access was revoked");
    texts.trustRevoked.subtitle = translatable("Ferrowyn", "Accessibility access was revoked");
    return texts;
}

StatusItemTexts linuxVariant() {
    StatusItemTexts texts = sharedTexts();
    texts.accessRequired = {.tooltip = translatable("Ferrowyn", "Ferrowyn — a window manager is required"),
                            .subtitle = linux_words::windowManagerRequired,
                            .repair = translatable("Ferrowyn", "Show What Is Missing…")};
    texts.serverUnusable = {.tooltip = translatable("Ferrowyn", "Ferrowyn — this X server cannot be used"),
                            .subtitle = linux_words::serverUnusable,
                            .repair = translatable("Ferrowyn", "Show What Is Missing…")};
    texts.activationsUnconfirmed.repair = translatable("Ferrowyn", "Use another window manager");
    texts.trustRevoked.tooltip = translatable("Ferrowyn", "Ferrowyn — keyboard access was lost");
    texts.trustRevoked.subtitle = translatable("Ferrowyn", "Keyboard access was lost");
    return texts;
}

}  // namespace

const StatusItemTexts& macStatusItemTexts() {
    static const StatusItemTexts texts = macVariant();
    return texts;
}

const StatusItemTexts& linuxStatusItemTexts() {
    static const StatusItemTexts texts = linuxVariant();
    return texts;
}

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
        .utility = macUtilityTexts(),
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
        // Either of the two may be missing, so the text names both.
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
        .utility = linuxUtilityTexts(),
    };
    return table;
}

}  // namespace ferrowyn
