#include "core/status_item_texts.h"

#include "core/linux_words.h"
#include "core/phrase.h"

namespace ferrowyn {

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

}  // namespace ferrowyn
