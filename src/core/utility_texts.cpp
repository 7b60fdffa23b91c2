#include "core/utility_texts.h"

#include "core/texts.h"

namespace ferrowyn {

namespace {

void setTitles(UtilityTexts& texts) {
    texts.setupWindowTitle = translatable("Ferrowyn", "Ferrowyn Setup");
    texts.settingsWindowTitle = translatable("Ferrowyn", "Ferrowyn Settings");
    texts.aboutWindowTitle = translatable("Ferrowyn", "About %1");
    texts.shiftKey = translatable("Ferrowyn", "⇧");
    texts.settings.generalTitle = translatable("Ferrowyn", "General");
    texts.settings.shortcutTitle = translatable("Ferrowyn", "Shortcut");
    texts.settings.appearanceTitle = translatable("Ferrowyn", "Appearance");
    texts.settings.windowsTitle = translatable("Ferrowyn", "Windows");
    texts.settings.favouritesTitle = translatable("Ferrowyn", "Favourites");
    texts.settings.aboutTitle = translatable("Ferrowyn", "About");
    texts.settings.sidebarName = translatable("Ferrowyn", "Settings");
}

void setGeneralPane(UtilityTexts& texts) {
    texts.settings.launchAtLogin = translatable("Ferrowyn", "Launch Ferrowyn at login");
    texts.settings.openLoginItems = translatable("Ferrowyn", "Open Login Items");
    texts.settings.updatesSection = translatable("Ferrowyn", "Updates");
    texts.settings.automaticUpdates = translatable("Ferrowyn", "Check for updates automatically");
    texts.settings.automaticUpdatesNote = translatable("Ferrowyn",
                                                       "The check sends only the app version and your macOS version. "
                                                       "No account, no identifier, and nothing about your windows.");
    texts.settings.checkNow = translatable("Ferrowyn", "Check Now");
    texts.settings.checking = translatable("Ferrowyn", "Checking…");
    texts.settings.notChecked = translatable("Ferrowyn", "Not checked yet.");
    texts.settings.noUpdateServer = translatable("Ferrowyn", "This build has no update server, so it never asks.");
    texts.settings.upToDate = translatable("Ferrowyn", "Ferrowyn is up to date");
    texts.settings.updateAvailable = translatable("Ferrowyn", "Version %1 is available");
    texts.settings.permissionsSection = translatable("Ferrowyn", "Permissions");
    texts.settings.permissionGranted = translatable("Ferrowyn", "Accessibility access granted");
    texts.settings.permissionRequired = translatable("Ferrowyn", "Accessibility access required");
    texts.settings.openSettings = translatable("Ferrowyn", "Open Settings");
    texts.settings.secureInput =
        translatable("Ferrowyn", "Secure input is active — another app is blocking global shortcuts.");
}

void setShortcutPane(UtilityTexts& texts) {
    texts.settings.summonWith = translatable("Ferrowyn", "Summon with");
    texts.settings.summonChoice = translatable("Ferrowyn", "%1 + Tab");
    texts.settings.optionName = translatable("Ferrowyn", "Option");
    texts.settings.commandName = translatable("Ferrowyn", "Command");
    texts.settings.controlName = translatable("Ferrowyn", "Control");
    texts.settings.commandReplacesNote =
        translatable("Ferrowyn", "Command + Tab replaces the system app switcher while Ferrowyn is running.");
    texts.settings.confirmOnRelease = translatable("Ferrowyn", "Switch when the modifier is released");
    texts.settings.confirmOnReleaseNote =
        translatable("Ferrowyn", "With this off, the switcher stays open until you press Return or Escape.");
    texts.settings.keysSection = translatable("Ferrowyn", "While the switcher is open");
    texts.settings.keyCycle = translatable("Ferrowyn", "Cycle List → Grouped → Grid");
    texts.settings.keyPin = translatable("Ferrowyn", "Pin or unpin the highlighted app");
    texts.settings.keyJump = translatable("Ferrowyn", "Jump straight to a row");
    texts.settings.keyMove = translatable("Ferrowyn", "Move the selection");
    texts.settings.keyClose = translatable("Ferrowyn", "Close without switching");
}

void setAppearancePane(UtilityTexts& texts) {
    texts.settings.layoutSection = translatable("Ferrowyn", "Layout");
    texts.settings.listTitle = translatable("Ferrowyn", "List");
    texts.settings.groupedTitle = translatable("Ferrowyn", "Grouped");
    texts.settings.gridTitle = translatable("Ferrowyn", "Grid");
    texts.settings.listDescription = translatable(
        "Ferrowyn", "A flat list, one window per line — densest, and the fastest to scan when titles differ.");
    texts.settings.groupedDescription =
        translatable("Ferrowyn", "Each application heads a section listing its own windows.");
    texts.settings.gridDescription = translatable("Ferrowyn", "Large icons like the system switcher, five across.");
    texts.settings.maximumRows = translatable("Ferrowyn", "Show up to %1 rows before scrolling");
    texts.settings.showHints = translatable("Ferrowyn", "Show shortcut hints");
}

void setWindowsPane(UtilityTexts& texts) {
    texts.settings.orderingSection = translatable("Ferrowyn", "Ordering");
    texts.settings.activeAppFirst = translatable("Ferrowyn", "Show the active app's windows first");
    texts.settings.activeAppFirstOnNote = translatable(
        "Ferrowyn",
        "Every window of the app you are in is grouped at the top, then everything else by most recent use.");
    texts.settings.activeAppFirstOffNote = translatable(
        "Ferrowyn", "Strict most-recently-used order — the second entry is whatever you were on immediately before.");
    texts.settings.includeSection = translatable("Ferrowyn", "Include");
    texts.settings.minimised = translatable("Ferrowyn", "Minimised windows");
    texts.settings.otherSpaces = translatable("Ferrowyn", "Windows on other Spaces");
    texts.settings.otherSpacesNote =
        translatable("Ferrowyn",
                     "A Space is a Desktop you switch between with Control-Arrow or Mission Control. Turn this off to "
                     "list only what is on the Desktop in front of you.");
}

void setFavouritesPane(UtilityTexts& texts) {
    texts.settings.favouritesFirst = translatable("Ferrowyn", "Show favourite apps first");
    texts.settings.favouritesFirstNote =
        translatable("Ferrowyn",
                     "Press %1 while the switcher is open to pin or unpin the highlighted window's app. Favourites are "
                     "remembered per app rather than per window, so they survive closing and reopening.");
    texts.settings.pinnedSection = translatable("Ferrowyn", "Pinned apps");
    texts.settings.nothingPinned = translatable("Ferrowyn", "Nothing pinned yet.");
    texts.settings.removeHelp = translatable("Ferrowyn", "Remove %1 from favourites");
    texts.settings.removeAll = translatable("Ferrowyn", "Remove All");
}

void setSetup(UtilityTexts& texts) {
    texts.onboarding.grantedTitle = translatable("Ferrowyn", "Accessibility access granted");
    texts.onboarding.grantedDetail = translatable("Ferrowyn", "The switcher is running in the menu bar.");
    texts.onboarding.keyOpen = translatable("Ferrowyn", "open / next");
    texts.onboarding.keyPrevious = translatable("Ferrowyn", "previous");
    texts.onboarding.keyJump = translatable("Ferrowyn", "jump");
    texts.onboarding.keyCancel = translatable("Ferrowyn", "cancel");
    texts.onboarding.typingHint =
        translatable("Ferrowyn", "Start typing while the switcher is open to filter by app name or window title.");
    texts.onboarding.stayingOpenHint = translatable(
        "Ferrowyn",
        "Typing keeps it open, and so do the arrow keys: letting go of the modifier no longer switches, Return does.");
    texts.onboarding.done = translatable("Ferrowyn", "Done");
    texts.onboarding.requiredTitle = translatable("Ferrowyn", "Accessibility access required");
    texts.onboarding.requiredExplanation =
        translatable("Ferrowyn",
                     "macOS only lets an app read window titles and focus other apps' windows with this permission. It "
                     "cannot be granted programmatically.");
    texts.onboarding.firstStep = translatable("Ferrowyn", "Open Privacy & Security → Accessibility.");
    texts.onboarding.secondStep = translatable("Ferrowyn", "Enable Ferrowyn in the list.");
    texts.onboarding.thirdStep = translatable("Ferrowyn", "Come back here — it detects the change automatically.");
    texts.onboarding.openSystemSettings = translatable("Ferrowyn", "Open System Settings");
    texts.onboarding.requestAccess = translatable("Ferrowyn", "Request Access");
    texts.onboarding.copyReport = "";
    texts.onboarding.revealApp = translatable("Ferrowyn", "Reveal App");
    texts.onboarding.troubleTitle = translatable("Ferrowyn", "Switch already on, but still not working?");
    texts.onboarding.troubleText =
        translatable("Ferrowyn",
                     "Select Ferrowyn in the list, remove it with −, then drag the app back in with +. macOS only "
                     "offers the permission prompt once per build, so an entry from a previous version cannot be "
                     "re-approved — it has to be replaced.");
    texts.onboarding.close = translatable("Ferrowyn", "Close");
}

void setAbout(UtilityTexts& texts) {
    texts.about.tagline = translatable("Ferrowyn", "Switch between every open window, not just apps.");
    texts.about.version = translatable("Ferrowyn", "Version %1");
    texts.about.copyright = translatable("Ferrowyn", "© %1 Ferrowyn");
    texts.about.summary = translatable("Ferrowyn", "About %1, version %2");
    texts.about.noHomePage = translatable("Ferrowyn", "This build has no home page.");
    texts.about.close = translatable("Ferrowyn", "Close");
}

UtilityTexts makeMacTexts() {
    UtilityTexts texts;
    setTitles(texts);
    setGeneralPane(texts);
    setShortcutPane(texts);
    setAppearancePane(texts);
    setWindowsPane(texts);
    setFavouritesPane(texts);
    setSetup(texts);
    setAbout(texts);
    return texts;
}

/// Replaces only the texts that name macOS, its settings or its keys.
UtilityTexts makeLinuxTexts() {
    UtilityTexts texts = makeMacTexts();
    texts.settings.automaticUpdatesNote = translatable("Ferrowyn",
                                                       "The check sends only the app version and your system version. "
                                                       "No account, no identifier, and nothing about your windows.");
    texts.settings.openLoginItems = translatable("Ferrowyn", "Open Autostart Settings");
    texts.settings.permissionsSection = translatable("Ferrowyn", "Requirements");
    texts.settings.permissionGranted = linux_words::windowManagerRuns;
    texts.settings.permissionRequired = linux_words::windowManagerRequired;
    texts.settings.openSettings = linux_words::openSetup;
    texts.settings.optionName = translatable("Ferrowyn", "Alt");
    texts.settings.commandName = translatable("Ferrowyn", "Super");
    texts.settings.controlName = translatable("Ferrowyn", "Ctrl");
    texts.settings.commandReplacesNote =
        translatable("Ferrowyn", "Super + Tab replaces the desktop's own switcher while Ferrowyn is running.");
    texts.settings.confirmOnReleaseNote =
        translatable("Ferrowyn", "With this off, the switcher stays open until you press Return or Esc.");
    texts.settings.otherSpaces = translatable("Ferrowyn", "Windows on other workspaces");
    texts.settings.otherSpacesNote =
        translatable("Ferrowyn",
                     "A workspace is one of the desktops you switch between, often with Ctrl+Alt+Arrow. Turn this off "
                     "to list only what is on the workspace in front of you.");

    texts.onboarding.grantedTitle = linux_words::windowManagerRuns;
    texts.onboarding.grantedDetail = translatable("Ferrowyn", "The switcher is running in the background.");
    texts.onboarding.requiredTitle = linux_words::windowManagerRequired;
    texts.onboarding.stayingOpenHint = translatable(
        "Ferrowyn",
        "Typing keeps it open, and so do the arrow keys: letting go of the modifier no longer switches, Return does.");
    texts.onboarding.requiredExplanation =
        translatable("Ferrowyn",
                     "Ferrowyn lists and focuses other apps' windows through the window manager, and sees its shortcut "
                     "through XInput 2.2. One of the two is missing on this desktop.");
    texts.onboarding.firstStep = translatable(
        "Ferrowyn", "Start a window manager that follows EWMH, for example “xfwm4 --replace” in a terminal.");
    texts.onboarding.secondStep =
        translatable("Ferrowyn",
                     "If one is running, update the X server: it must offer XInput 2.2 (X.Org 1.12 or later). Xephyr "
                     "cannot be used.");
    texts.onboarding.openSystemSettings = "";
    texts.onboarding.requestAccess = translatable("Ferrowyn", "Check Again");
    texts.onboarding.copyReport = translatable("Ferrowyn", "Copy Report");
    texts.onboarding.troubleTitle = translatable("Ferrowyn", "Window manager running, but still not working?");
    texts.onboarding.troubleText = translatable(
        "Ferrowyn",
        "Run “ferrowyn --doctor” in a terminal: it says which window manager and which XInput version it finds. A "
        "window manager that does not follow EWMH, such as twm, cannot be used — it has to be replaced.");

    texts.serverUnusable = linux_words::serverUnusable;
    texts.shiftKey = translatable("Ferrowyn", "Shift");
    return texts;
}

}  // namespace

const UtilityTexts& macUtilityTexts() {
    static const UtilityTexts texts = makeMacTexts();
    return texts;
}

const UtilityTexts& linuxUtilityTexts() {
    static const UtilityTexts texts = makeLinuxTexts();
    return texts;
}

}  // namespace ferrowyn
