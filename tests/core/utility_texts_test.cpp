#include "core/texts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <string_view>
#include <vector>

#include "core/utility_texts.h"

namespace ferrowyn {
namespace {

TEST(PhraseTest, ArgumentsReplaceTheirPlaceholders) {
    EXPECT_EQ((Phrase{"About %1, version %2", {"Ferrowyn", "1.2"}}.untranslated()), "About Ferrowyn, version 1.2");
    // A translation may turn the order round, or say one twice.
    EXPECT_EQ(withArguments("%2 (%1, %1)", {"a", "b"}), "b (a, a)");
}

TEST(PhraseTest, ArgumentsAreNotReadAgain) {
    EXPECT_EQ((Phrase{"Remove %1 from %2", {"%2", "x"}}.untranslated()), "Remove %2 from x");
    EXPECT_EQ(Phrase::verbatim("100 %1 sure").untranslated(), "100 %1 sure");
}

TEST(PhraseTest, PlaceholdersWithoutAnArgumentStay) {
    EXPECT_EQ((Phrase{"%1 and %2", {"one"}}.untranslated()), "one and %2");
    EXPECT_EQ((Phrase{"50 % of %", {"one"}}.untranslated()), "50 % of %");
    EXPECT_EQ((Phrase{"%0", {"one"}}.untranslated()), "%0");
}

TEST(PhraseTest, MarkingATextForTranslationLeavesItAlone) {
    static_assert(translatable("Ferrowyn", "Close") == "Close");
    EXPECT_EQ((Phrase{translatable("Ferrowyn", "Close"), {}}.untranslated()), "Close");
}

TEST(UtilityTextsTest, OnAMacTitlesAndKeys) {
    const UtilityTexts& texts = macUtilityTexts();
    EXPECT_EQ(texts.setupWindowTitle, "Ferrowyn Setup");
    EXPECT_EQ(texts.settingsWindowTitle, "Ferrowyn Settings");
    EXPECT_EQ(texts.aboutWindowTitle, "About %1");
    EXPECT_EQ(texts.shiftKey, "⇧");
}

TEST(UtilityTextsTest, OnAMacSettingsWindow) {
    const UtilityTexts& texts = macUtilityTexts();
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
    EXPECT_EQ(texts.settings.noUpdateServer, "This build has no update server, so it never asks.");
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

TEST(UtilityTextsTest, OnAMacSetupWindow) {
    const UtilityTexts& texts = macUtilityTexts();
    EXPECT_EQ(texts.onboarding.grantedTitle, "Accessibility access granted");
    EXPECT_EQ(texts.onboarding.grantedDetail, "The switcher is running in the menu bar.");
    EXPECT_EQ(texts.onboarding.keyOpen, "open / next");
    EXPECT_EQ(texts.onboarding.keyPrevious, "previous");
    EXPECT_EQ(texts.onboarding.keyJump, "jump");
    EXPECT_EQ(texts.onboarding.keyCancel, "cancel");
    EXPECT_EQ(texts.onboarding.typingHint,
              "Start typing while the switcher is open to filter by app name or window title.");
    EXPECT_EQ(
        texts.onboarding.stayingOpenHint,
        "Typing keeps it open, and so do the arrow keys: letting go of the modifier no longer switches, Return does.");
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

TEST(UtilityTextsTest, OnAMacAboutWindow) {
    const UtilityTexts& texts = macUtilityTexts();
    EXPECT_EQ(texts.about.tagline, "Switch between every open window, not just apps.");
    EXPECT_EQ(texts.about.version, "Version %1");
    EXPECT_EQ(texts.about.copyright, "© %1 Ferrowyn");
    EXPECT_EQ(texts.about.noHomePage, "This build has no home page.");
    EXPECT_EQ(texts.about.summary, "About %1, version %2");
    EXPECT_EQ(texts.about.close, "Close");
}

TEST(UtilityTextsTest, OnALinuxDesktopTitlesAndKeys) {
    const UtilityTexts& texts = linuxUtilityTexts();
    EXPECT_EQ(texts.setupWindowTitle, "Ferrowyn Setup");
    EXPECT_EQ(texts.settingsWindowTitle, "Ferrowyn Settings");
    EXPECT_EQ(texts.aboutWindowTitle, "About %1");
    EXPECT_EQ(texts.shiftKey, "Shift");
}

TEST(UtilityTextsTest, OnALinuxDesktopSettingsWindow) {
    const UtilityTexts& texts = linuxUtilityTexts();
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
    EXPECT_EQ(texts.settings.noUpdateServer, "This build has no update server, so it never asks.");
    EXPECT_EQ(texts.settings.upToDate, "Ferrowyn is up to date");
    EXPECT_EQ(texts.settings.updateAvailable, "Version %1 is available");
    EXPECT_EQ(texts.settings.permissionsSection, "Requirements");
    EXPECT_EQ(texts.settings.permissionGranted, "A window manager is running");
    EXPECT_EQ(texts.settings.permissionRequired, "A window manager is required");
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
              "With this off, the switcher stays open until you press Return or Esc.");
    EXPECT_EQ(texts.settings.keysSection, "While the switcher is open");
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

TEST(UtilityTextsTest, OnALinuxDesktopSetupWindow) {
    const UtilityTexts& texts = linuxUtilityTexts();
    EXPECT_EQ(texts.onboarding.grantedTitle, "A window manager is running");
    EXPECT_EQ(texts.onboarding.grantedDetail, "The switcher is running in the background.");
    EXPECT_EQ(texts.onboarding.keyOpen, "open / next");
    EXPECT_EQ(texts.onboarding.keyPrevious, "previous");
    EXPECT_EQ(texts.onboarding.keyJump, "jump");
    EXPECT_EQ(texts.onboarding.keyCancel, "cancel");
    EXPECT_EQ(texts.onboarding.typingHint,
              "Start typing while the switcher is open to filter by app name or window title.");
    EXPECT_EQ(
        texts.onboarding.stayingOpenHint,
        "Typing keeps it open, and so do the arrow keys: letting go of the modifier no longer switches, Return does.");
    EXPECT_EQ(texts.onboarding.done, "Done");
    EXPECT_EQ(texts.onboarding.requiredTitle, "A window manager is required");
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

TEST(UtilityTextsTest, OnALinuxDesktopAboutWindow) {
    const UtilityTexts& texts = linuxUtilityTexts();
    EXPECT_EQ(texts.about.tagline, "Switch between every open window, not just apps.");
    EXPECT_EQ(texts.about.version, "Version %1");
    EXPECT_EQ(texts.about.copyright, "© %1 Ferrowyn");
    EXPECT_EQ(texts.about.noHomePage, "This build has no home page.");
    EXPECT_EQ(texts.about.summary, "About %1, version %2");
    EXPECT_EQ(texts.about.close, "Close");
}

/// Every text of a table, whatever is added to it: nothing but texts stands in one.
template <typename Table>
auto textsIn(const Table& table) {
    static_assert(sizeof(Table) % sizeof(std::string_view) == 0);
    return std::bit_cast<std::array<std::string_view, sizeof(Table) / sizeof(std::string_view)>>(table);
}

/// The texts that a whole desktop shows: those of the panel, of the menu and of the windows.
std::vector<std::string_view> allTexts(const TextTable& table) {
    struct Parts {
        // What is left of the table without its references to the other two.
        std::array<std::string_view, (sizeof(TextTable) - 2 * sizeof(void*)) / sizeof(std::string_view)> own;
        std::array<const void*, 2> others;
    };
    const auto parts = std::bit_cast<Parts>(table);
    EXPECT_EQ(parts.others[0], &table.statusItem);
    EXPECT_EQ(parts.others[1], &table.utility);
    std::vector<std::string_view> all(parts.own.begin(), parts.own.end());
    for (const std::string_view text : textsIn(table.statusItem)) {
        all.push_back(text);
    }
    for (const std::string_view text : textsIn(table.utility)) {
        all.push_back(text);
    }
    return all;
}

TEST(UtilityTextsTest, NothingOnALinuxDesktopNamesAnotherSystem) {
    const std::vector<std::string_view> all = allTexts(linuxTexts());
    // The first, one from between, and the last of each table are among what was found.
    const UtilityTexts& windows = linuxUtilityTexts();
    for (const std::string_view known :
         {linuxTexts().optionKey, linuxTexts().permissionExplanation, linuxTexts().loginItemApproval,
          linuxStatusItemTexts().programName, linuxStatusItemTexts().quit, windows.setupWindowTitle,
          windows.settings.removeAll, windows.onboarding.troubleText, windows.about.close, windows.shiftKey}) {
        ASSERT_NE(std::find(all.begin(), all.end(), known), all.end()) << known;
    }
    for (const std::string_view text : all) {
        for (const std::string_view foreign :
             {"macOS", "Mission Control", "System Settings", "/Applications", "menu bar", "Space", "Option", "Command",
              "Control", "⌘", "⌥", "⌃", "⇧", "⇥", "⏎", "Dock", "Privacy", "Accessibility"}) {
            EXPECT_EQ(text.find(foreign), std::string_view::npos) << text;
        }
    }
}

TEST(UtilityTextsTest, AKeyHasOneNameOnALinuxDesktop) {
    EXPECT_EQ(linuxTexts().returnKey, "Return");
    EXPECT_EQ(linuxTexts().escapeKey, "Esc");
    for (const std::string_view text : allTexts(linuxTexts())) {
        for (const std::string_view otherName : {"Enter", "Escape", "esc", "Windows key"}) {
            // As a word: "escape" may well be part of another one.
            for (std::size_t at = text.find(otherName); at != std::string_view::npos;
                 at = text.find(otherName, at + 1)) {
                const auto isLetter = [text](std::size_t place) {
                    return place < text.size() && std::isalpha(static_cast<unsigned char>(text[place])) != 0;
                };
                EXPECT_TRUE(isLetter(at - 1) || isLetter(at + otherName.size())) << text;
            }
        }
    }
}

TEST(UtilityTextsTest, WhatIsMissingIsSaidInTheSameWordsEverywhere) {
    const TextTable& linux = linuxTexts();
    const std::string_view windowManager = "A window manager is required";
    EXPECT_EQ(linux.permissionTitle, windowManager);
    EXPECT_EQ(linux.statusItem.accessRequired.subtitle, windowManager);
    EXPECT_EQ(linux.utility.settings.permissionRequired, windowManager);
    EXPECT_EQ(linux.utility.onboarding.requiredTitle, windowManager);
    const std::string_view server = "This X server cannot be used";
    EXPECT_EQ(linux.statusItem.serverUnusable.subtitle, server);
    EXPECT_EQ(linux.utility.serverUnusable, server);
    EXPECT_EQ(linux.utility.settings.permissionGranted, linux.utility.onboarding.grantedTitle);
    EXPECT_EQ(linux.permissionButton, linux.utility.settings.openSettings);
    EXPECT_EQ(linux.otherSpaceBadge, "Other Workspace");
    EXPECT_EQ(linux.utility.settings.otherSpaces, "Windows on other workspaces");
}

}  // namespace
}  // namespace ferrowyn
