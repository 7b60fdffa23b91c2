#include "core/window_texts.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace ferrowyn {
namespace {

TEST(WindowTextsTest, OnAMacTitlesAndKeys) {
    const WindowTexts& texts = macWindowTexts();
    EXPECT_EQ(texts.setupWindowTitle, "Ferrowyn Setup");
    EXPECT_EQ(texts.settingsWindowTitle, "Ferrowyn Settings");
    EXPECT_EQ(texts.aboutWindowTitle, "About %1");
    EXPECT_EQ(texts.shiftKey, "⇧");
}

TEST(WindowTextsTest, OnAMacSettingsWindow) {
    const WindowTexts& texts = macWindowTexts();
    EXPECT_EQ(texts.settings.generalTitle, "General");
    EXPECT_EQ(texts.settings.shortcutTitle, "Shortcut");
    EXPECT_EQ(texts.settings.appearanceTitle, "Appearance");
    EXPECT_EQ(texts.settings.windowsTitle, "Windows");
    EXPECT_EQ(texts.settings.favouritesTitle, "Favourites");
    EXPECT_EQ(texts.settings.aboutTitle, "About");
    EXPECT_EQ(texts.settings.sidebarName, "Settings");
    EXPECT_EQ(texts.settings.launchAtLogin, "Launch Ferrowyn at login");
    EXPECT_EQ(texts.settings.openLoginItems, "Open Login Items");
    EXPECT_EQ(texts.settings.updatesSection, "Updates");
    EXPECT_EQ(texts.settings.automaticUpdates, "Check for updates automatically");
    EXPECT_EQ(texts.settings.automaticUpdatesNote,
              "The check sends only the app version and your macOS version. No account, no identifier, and nothing "
              "about your windows.");
    EXPECT_EQ(texts.settings.checkNow, "Check Now");
    EXPECT_EQ(texts.settings.checking, "Checking…");
    EXPECT_EQ(texts.settings.notChecked, "Not checked yet.");
    EXPECT_EQ(texts.settings.upToDate, "Ferrowyn is up to date");
    EXPECT_EQ(texts.settings.updateAvailable, "Version %1 is available");
    EXPECT_EQ(texts.settings.permissionsSection, "Permissions");
    EXPECT_EQ(texts.settings.permissionGranted, "Accessibility access granted");
    EXPECT_EQ(texts.settings.permissionRequired, "Accessibility access required");
    EXPECT_EQ(texts.settings.openSettings, "Open Settings");
    EXPECT_EQ(texts.settings.secureInput, "Secure input is active — another app is blocking global shortcuts.");
    EXPECT_EQ(texts.settings.summonWith, "Summon with");
    EXPECT_EQ(texts.settings.summonChoice, "%1 + Tab");
    EXPECT_EQ(texts.settings.optionName, "Option");
    EXPECT_EQ(texts.settings.commandName, "Command");
    EXPECT_EQ(texts.settings.controlName, "Control");
    EXPECT_EQ(texts.settings.commandReplacesNote,
              "Command + Tab replaces the system app switcher while Ferrowyn is running.");
    EXPECT_EQ(texts.settings.confirmOnRelease, "Switch when the modifier is released");
    EXPECT_EQ(texts.settings.confirmOnReleaseNote,
              "With this off, the switcher stays open until you press Return or Escape.");
    EXPECT_EQ(texts.settings.keysSection, "While the switcher is open");
    EXPECT_EQ(texts.settings.escapeKey, "esc");
    EXPECT_EQ(texts.settings.keyCycle, "Cycle List → Grouped → Grid");
    EXPECT_EQ(texts.settings.keyPin, "Pin or unpin the highlighted app");
    EXPECT_EQ(texts.settings.keyJump, "Jump straight to a row");
    EXPECT_EQ(texts.settings.keyMove, "Move the selection");
    EXPECT_EQ(texts.settings.keyClose, "Close without switching");
    EXPECT_EQ(texts.settings.layoutSection, "Layout");
    EXPECT_EQ(texts.settings.listTitle, "List");
    EXPECT_EQ(texts.settings.groupedTitle, "Grouped");
    EXPECT_EQ(texts.settings.gridTitle, "Grid");
    EXPECT_EQ(texts.settings.listDescription,
              "A flat list, one window per line — densest, and the fastest to scan when titles differ.");
    EXPECT_EQ(texts.settings.groupedDescription, "Each application heads a section listing its own windows.");
    EXPECT_EQ(texts.settings.gridDescription, "Large icons like the system switcher, five across.");
    EXPECT_EQ(texts.settings.maximumRows, "Show up to %1 rows before scrolling");
    EXPECT_EQ(texts.settings.showHints, "Show shortcut hints");
    EXPECT_EQ(texts.settings.orderingSection, "Ordering");
    EXPECT_EQ(texts.settings.activeAppFirst, "Show the active app's windows first");
    EXPECT_EQ(texts.settings.activeAppFirstOnNote,
              "Every window of the app you are in is grouped at the top, then everything else by most recent use.");
    EXPECT_EQ(texts.settings.activeAppFirstOffNote,
              "Strict most-recently-used order — the second entry is whatever you were on immediately before.");
    EXPECT_EQ(texts.settings.includeSection, "Include");
    EXPECT_EQ(texts.settings.minimised, "Minimised windows");
    EXPECT_EQ(texts.settings.otherSpaces, "Windows on other Spaces");
    EXPECT_EQ(texts.settings.otherSpacesNote,
              "A Space is a Desktop you switch between with Control-Arrow or Mission Control. Turn this off to list "
              "only what is on the Desktop in front of you.");
    EXPECT_EQ(texts.settings.favouritesFirst, "Show favourite apps first");
    EXPECT_EQ(texts.settings.favouritesFirstNote,
              "Press %1 while the switcher is open to pin or unpin the highlighted window's app. Favourites are "
              "remembered per app rather than per window, so they survive closing and reopening.");
    EXPECT_EQ(texts.settings.pinnedSection, "Pinned apps");
    EXPECT_EQ(texts.settings.nothingPinned, "Nothing pinned yet.");
    EXPECT_EQ(texts.settings.removeHelp, "Remove %1 from favourites");
    EXPECT_EQ(texts.settings.removeAll, "Remove All");
}

TEST(WindowTextsTest, OnAMacSetupWindow) {
    const WindowTexts& texts = macWindowTexts();
    EXPECT_EQ(texts.onboarding.grantedTitle, "Accessibility access granted");
    EXPECT_EQ(texts.onboarding.grantedDetail, "The switcher is running in the menu bar.");
    EXPECT_EQ(texts.onboarding.keyOpen, "open / next");
    EXPECT_EQ(texts.onboarding.keyPrevious, "previous");
    EXPECT_EQ(texts.onboarding.keyJump, "jump");
    EXPECT_EQ(texts.onboarding.keyCancel, "cancel");
    EXPECT_EQ(texts.onboarding.typingHint,
              "Start typing while the switcher is open to filter by app name or window title.");
    EXPECT_EQ(texts.onboarding.done, "Done");
    EXPECT_EQ(texts.onboarding.requiredTitle, "Accessibility access required");
    EXPECT_EQ(texts.onboarding.requiredExplanation,
              "macOS only lets an app read window titles and focus other apps' windows with this permission. It cannot "
              "be granted programmatically.");
    EXPECT_EQ(texts.onboarding.firstStep, "Open Privacy & Security → Accessibility.");
    EXPECT_EQ(texts.onboarding.secondStep, "Enable Ferrowyn in the list.");
    EXPECT_EQ(texts.onboarding.thirdStep, "Come back here — it detects the change automatically.");
    EXPECT_EQ(texts.onboarding.openSystemSettings, "Open System Settings");
    EXPECT_EQ(texts.onboarding.requestAccess, "Request Access");
    EXPECT_EQ(texts.onboarding.copyReport, "");
    EXPECT_EQ(texts.onboarding.revealApp, "Reveal App");
    EXPECT_EQ(texts.onboarding.troubleTitle, "Switch already on, but still not working?");
    EXPECT_EQ(texts.onboarding.troubleText,
              "Select Ferrowyn in the list, remove it with −, then drag the app back in with +. macOS only offers the "
              "permission prompt once per build, so an entry from a previous version cannot be re-approved — it has to "
              "be replaced.");
    EXPECT_EQ(texts.onboarding.close, "Close");
}

TEST(WindowTextsTest, OnAMacAboutWindow) {
    const WindowTexts& texts = macWindowTexts();
    EXPECT_EQ(texts.about.tagline, "Switch between every open window, not just apps.");
    EXPECT_EQ(texts.about.version, "Version %1");
    EXPECT_EQ(texts.about.copyright, "© %1 Ferrowyn");
    EXPECT_EQ(texts.about.summary, "About %1, version %2");
    EXPECT_EQ(texts.about.close, "Close");
}

TEST(WindowTextsTest, OnALinuxDesktopTitlesAndKeys) {
    const WindowTexts& texts = linuxWindowTexts();
    EXPECT_EQ(texts.setupWindowTitle, "Ferrowyn Setup");
    EXPECT_EQ(texts.settingsWindowTitle, "Ferrowyn Settings");
    EXPECT_EQ(texts.aboutWindowTitle, "About %1");
    EXPECT_EQ(texts.shiftKey, "Shift");
}

TEST(WindowTextsTest, OnALinuxDesktopSettingsWindow) {
    const WindowTexts& texts = linuxWindowTexts();
    EXPECT_EQ(texts.settings.generalTitle, "General");
    EXPECT_EQ(texts.settings.shortcutTitle, "Shortcut");
    EXPECT_EQ(texts.settings.appearanceTitle, "Appearance");
    EXPECT_EQ(texts.settings.windowsTitle, "Windows");
    EXPECT_EQ(texts.settings.favouritesTitle, "Favourites");
    EXPECT_EQ(texts.settings.aboutTitle, "About");
    EXPECT_EQ(texts.settings.sidebarName, "Settings");
    EXPECT_EQ(texts.settings.launchAtLogin, "Launch Ferrowyn at login");
    EXPECT_EQ(texts.settings.openLoginItems, "Open Autostart Settings");
    EXPECT_EQ(texts.settings.updatesSection, "Updates");
    EXPECT_EQ(texts.settings.automaticUpdates, "Check for updates automatically");
    EXPECT_EQ(texts.settings.automaticUpdatesNote,
              "The check sends only the app version and your system version. No account, no identifier, and nothing "
              "about your windows.");
    EXPECT_EQ(texts.settings.checkNow, "Check Now");
    EXPECT_EQ(texts.settings.checking, "Checking…");
    EXPECT_EQ(texts.settings.notChecked, "Not checked yet.");
    EXPECT_EQ(texts.settings.upToDate, "Ferrowyn is up to date");
    EXPECT_EQ(texts.settings.updateAvailable, "Version %1 is available");
    EXPECT_EQ(texts.settings.permissionsSection, "Permissions");
    EXPECT_EQ(texts.settings.permissionGranted, "Accessibility access granted");
    EXPECT_EQ(texts.settings.permissionRequired, "Accessibility access required");
    EXPECT_EQ(texts.settings.openSettings, "Open Setup");
    EXPECT_EQ(texts.settings.secureInput, "Secure input is active — another app is blocking global shortcuts.");
    EXPECT_EQ(texts.settings.summonWith, "Summon with");
    EXPECT_EQ(texts.settings.summonChoice, "%1 + Tab");
    EXPECT_EQ(texts.settings.optionName, "Alt");
    EXPECT_EQ(texts.settings.commandName, "Super");
    EXPECT_EQ(texts.settings.controlName, "Ctrl");
    EXPECT_EQ(texts.settings.commandReplacesNote,
              "Super + Tab replaces the desktop's own switcher while Ferrowyn is running.");
    EXPECT_EQ(texts.settings.confirmOnRelease, "Switch when the modifier is released");
    EXPECT_EQ(texts.settings.confirmOnReleaseNote,
              "With this off, the switcher stays open until you press Enter or Esc.");
    EXPECT_EQ(texts.settings.keysSection, "While the switcher is open");
    EXPECT_EQ(texts.settings.escapeKey, "Esc");
    EXPECT_EQ(texts.settings.keyCycle, "Cycle List → Grouped → Grid");
    EXPECT_EQ(texts.settings.keyPin, "Pin or unpin the highlighted app");
    EXPECT_EQ(texts.settings.keyJump, "Jump straight to a row");
    EXPECT_EQ(texts.settings.keyMove, "Move the selection");
    EXPECT_EQ(texts.settings.keyClose, "Close without switching");
    EXPECT_EQ(texts.settings.layoutSection, "Layout");
    EXPECT_EQ(texts.settings.listTitle, "List");
    EXPECT_EQ(texts.settings.groupedTitle, "Grouped");
    EXPECT_EQ(texts.settings.gridTitle, "Grid");
    EXPECT_EQ(texts.settings.listDescription,
              "A flat list, one window per line — densest, and the fastest to scan when titles differ.");
    EXPECT_EQ(texts.settings.groupedDescription, "Each application heads a section listing its own windows.");
    EXPECT_EQ(texts.settings.gridDescription, "Large icons like the system switcher, five across.");
    EXPECT_EQ(texts.settings.maximumRows, "Show up to %1 rows before scrolling");
    EXPECT_EQ(texts.settings.showHints, "Show shortcut hints");
    EXPECT_EQ(texts.settings.orderingSection, "Ordering");
    EXPECT_EQ(texts.settings.activeAppFirst, "Show the active app's windows first");
    EXPECT_EQ(texts.settings.activeAppFirstOnNote,
              "Every window of the app you are in is grouped at the top, then everything else by most recent use.");
    EXPECT_EQ(texts.settings.activeAppFirstOffNote,
              "Strict most-recently-used order — the second entry is whatever you were on immediately before.");
    EXPECT_EQ(texts.settings.includeSection, "Include");
    EXPECT_EQ(texts.settings.minimised, "Minimised windows");
    EXPECT_EQ(texts.settings.otherSpaces, "Windows on other workspaces");
    EXPECT_EQ(texts.settings.otherSpacesNote,
              "A workspace is one of the desktops you switch between, often with Ctrl+Alt+Arrow. Turn this off to list "
              "only what is on the workspace in front of you.");
    EXPECT_EQ(texts.settings.favouritesFirst, "Show favourite apps first");
    EXPECT_EQ(texts.settings.favouritesFirstNote,
              "Press %1 while the switcher is open to pin or unpin the highlighted window's app. Favourites are "
              "remembered per app rather than per window, so they survive closing and reopening.");
    EXPECT_EQ(texts.settings.pinnedSection, "Pinned apps");
    EXPECT_EQ(texts.settings.nothingPinned, "Nothing pinned yet.");
    EXPECT_EQ(texts.settings.removeHelp, "Remove %1 from favourites");
    EXPECT_EQ(texts.settings.removeAll, "Remove All");
}

TEST(WindowTextsTest, OnALinuxDesktopSetupWindow) {
    const WindowTexts& texts = linuxWindowTexts();
    EXPECT_EQ(texts.onboarding.grantedTitle, "Accessibility access granted");
    EXPECT_EQ(texts.onboarding.grantedDetail, "The switcher is running in the background.");
    EXPECT_EQ(texts.onboarding.keyOpen, "open / next");
    EXPECT_EQ(texts.onboarding.keyPrevious, "previous");
    EXPECT_EQ(texts.onboarding.keyJump, "jump");
    EXPECT_EQ(texts.onboarding.keyCancel, "cancel");
    EXPECT_EQ(texts.onboarding.typingHint,
              "Start typing while the switcher is open to filter by app name or window title.");
    EXPECT_EQ(texts.onboarding.done, "Done");
    EXPECT_EQ(texts.onboarding.requiredTitle, "Accessibility access required");
    EXPECT_EQ(texts.onboarding.requiredExplanation,
              "Ferrowyn lists and focuses other apps' windows through the window manager, and sees its shortcut "
              "through XInput 2.2. One of the two is missing on this desktop.");
    EXPECT_EQ(texts.onboarding.firstStep,
              "Start a window manager that follows EWMH, for example “xfwm4 --replace” in a terminal.");
    EXPECT_EQ(texts.onboarding.secondStep,
              "If one is running, update the X server: it must offer XInput 2.2 (X.Org 1.12 or later). Xephyr "
              "cannot be used.");
    EXPECT_EQ(texts.onboarding.thirdStep, "Come back here — it detects the change automatically.");
    EXPECT_EQ(texts.onboarding.openSystemSettings, "");
    EXPECT_EQ(texts.onboarding.requestAccess, "Check Again");
    EXPECT_EQ(texts.onboarding.copyReport, "Copy Report");
    EXPECT_EQ(texts.onboarding.revealApp, "Reveal App");
    EXPECT_EQ(texts.onboarding.troubleTitle, "Window manager running, but still not working?");
    EXPECT_EQ(texts.onboarding.troubleText,
              "Run “ferrowyn --doctor” in a terminal: it says which window manager and which XInput version it finds. "
              "A window manager that does not follow EWMH, such as twm, cannot be used — it has to be replaced.");
    EXPECT_EQ(texts.onboarding.close, "Close");
}

TEST(WindowTextsTest, OnALinuxDesktopAboutWindow) {
    const WindowTexts& texts = linuxWindowTexts();
    EXPECT_EQ(texts.about.tagline, "Switch between every open window, not just apps.");
    EXPECT_EQ(texts.about.version, "Version %1");
    EXPECT_EQ(texts.about.copyright, "© %1 Ferrowyn");
    EXPECT_EQ(texts.about.summary, "About %1, version %2");
    EXPECT_EQ(texts.about.close, "Close");
}

TEST(WindowTextsTest, NothingOnALinuxDesktopNamesAnotherSystem) {
    const WindowTexts& texts = linuxWindowTexts();
    const std::vector<std::string_view> all{
        texts.setupWindowTitle,
        texts.settingsWindowTitle,
        texts.aboutWindowTitle,
        texts.shiftKey,
        texts.settings.generalTitle,
        texts.settings.shortcutTitle,
        texts.settings.appearanceTitle,
        texts.settings.windowsTitle,
        texts.settings.favouritesTitle,
        texts.settings.aboutTitle,
        texts.settings.sidebarName,
        texts.settings.launchAtLogin,
        texts.settings.openLoginItems,
        texts.settings.updatesSection,
        texts.settings.automaticUpdates,
        texts.settings.automaticUpdatesNote,
        texts.settings.checkNow,
        texts.settings.checking,
        texts.settings.notChecked,
        texts.settings.upToDate,
        texts.settings.updateAvailable,
        texts.settings.permissionsSection,
        texts.settings.permissionGranted,
        texts.settings.permissionRequired,
        texts.settings.openSettings,
        texts.settings.secureInput,
        texts.settings.summonWith,
        texts.settings.summonChoice,
        texts.settings.optionName,
        texts.settings.commandName,
        texts.settings.controlName,
        texts.settings.commandReplacesNote,
        texts.settings.confirmOnRelease,
        texts.settings.confirmOnReleaseNote,
        texts.settings.keysSection,
        texts.settings.escapeKey,
        texts.settings.keyCycle,
        texts.settings.keyPin,
        texts.settings.keyJump,
        texts.settings.keyMove,
        texts.settings.keyClose,
        texts.settings.layoutSection,
        texts.settings.listTitle,
        texts.settings.groupedTitle,
        texts.settings.gridTitle,
        texts.settings.listDescription,
        texts.settings.groupedDescription,
        texts.settings.gridDescription,
        texts.settings.maximumRows,
        texts.settings.showHints,
        texts.settings.orderingSection,
        texts.settings.activeAppFirst,
        texts.settings.activeAppFirstOnNote,
        texts.settings.activeAppFirstOffNote,
        texts.settings.includeSection,
        texts.settings.minimised,
        texts.settings.otherSpaces,
        texts.settings.otherSpacesNote,
        texts.settings.favouritesFirst,
        texts.settings.favouritesFirstNote,
        texts.settings.pinnedSection,
        texts.settings.nothingPinned,
        texts.settings.removeHelp,
        texts.settings.removeAll,
        texts.onboarding.grantedTitle,
        texts.onboarding.grantedDetail,
        texts.onboarding.keyOpen,
        texts.onboarding.keyPrevious,
        texts.onboarding.keyJump,
        texts.onboarding.keyCancel,
        texts.onboarding.typingHint,
        texts.onboarding.done,
        texts.onboarding.requiredTitle,
        texts.onboarding.requiredExplanation,
        texts.onboarding.firstStep,
        texts.onboarding.secondStep,
        texts.onboarding.thirdStep,
        texts.onboarding.openSystemSettings,
        texts.onboarding.requestAccess,
        texts.onboarding.copyReport,
        texts.onboarding.revealApp,
        texts.onboarding.troubleTitle,
        texts.onboarding.troubleText,
        texts.onboarding.close,
        texts.about.tagline,
        texts.about.version,
        texts.about.copyright,
        texts.about.summary,
        texts.about.close,
    };
    for (const std::string_view text : all) {
        for (const std::string_view foreign :
             {"macOS", "Mission Control", "System Settings", "/Applications", "menu bar", "Space", "Option", "Command",
              "Control", "⌘", "⌥", "⌃", "⇧", "Dock", "Privacy"}) {
            EXPECT_EQ(text.find(foreign), std::string_view::npos) << text;
        }
    }
}

}  // namespace
}  // namespace ferrowyn
