#include "ui/windows/settings_model.h"

#include <gtest/gtest.h>

namespace ferrowyn {
namespace {

using settings_lines::StatusLine;
using Tint = StatusLine::Tint;

const WindowTexts& mac() {
    return macWindowTexts();
}

TEST(SettingsLinesTest, TheUpdateLineSaysHowTheLastCheckEnded) {
    const auto line = [](const UpdateChecker::State& state) { return settings_lines::updateStatus(state, mac()); };
    EXPECT_EQ(line(UpdateChecker::Idle{}), (StatusLine{"", Tint::none, {"Not checked yet.", {}}}));
    EXPECT_EQ(line(UpdateChecker::UpToDate{}),
              (StatusLine{"checkmark.circle.fill", Tint::good, {"Ferrowyn is up to date", {}}}));
    const UpdateChecker::UpdateAvailable available{{AppVersion("1.4-beta"), "https://ferrowyn.example/f", {}}};
    const auto found = line(available);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->symbol, "arrow.down.circle.fill");
    EXPECT_EQ(found->text.untranslated(), "Version 1.4-beta is available");
    EXPECT_EQ(line(UpdateChecker::Failed{{"The update server replied with %1.", {"404"}}}),
              (StatusLine{"exclamationmark.triangle.fill", Tint::attention,
                          Phrase{"The update server replied with %1.", {"404"}}}));
    EXPECT_EQ(line(UpdateChecker::Checking{}), std::nullopt);
}

TEST(SettingsLinesTest, ThePermissionLineFollowsTrust) {
    EXPECT_EQ(settings_lines::permissionStatus(AccessibilityStatus::trusted, true, mac()),
              (StatusLine{"checkmark.circle.fill", Tint::good, {"Accessibility access granted", {}}}));
    EXPECT_EQ(settings_lines::permissionStatus(AccessibilityStatus::notTrusted, true, mac()),
              (StatusLine{"exclamationmark.triangle.fill", Tint::attention, {"Accessibility access required", {}}}));
    EXPECT_EQ(settings_lines::secureInputStatus(mac()),
              (StatusLine{"keyboard.badge.ellipsis",
                          Tint::attention,
                          {"Secure input is active — another app is blocking global shortcuts.", {}}}));
    EXPECT_EQ(settings_lines::loginItemMessage("Because."),
              (StatusLine{"exclamationmark.triangle.fill", Tint::attention, Phrase{"Because.", {}}}));
}

TEST(SettingsLinesTest, TheTriggersAreNamedAsTheirKeyboardNamesThem) {
    const auto choice = [](SwitcherModifier modifier, const WindowTexts& texts) {
        return settings_lines::summonChoice(modifier, texts).untranslated();
    };
    EXPECT_EQ(choice(SwitcherModifier::option, mac()), "Option + Tab");
    EXPECT_EQ(choice(SwitcherModifier::command, mac()), "Command + Tab");
    EXPECT_EQ(choice(SwitcherModifier::control, mac()), "Control + Tab");
    EXPECT_EQ(choice(SwitcherModifier::option, linuxWindowTexts()), "Alt + Tab");
    EXPECT_EQ(choice(SwitcherModifier::command, linuxWindowTexts()), "Super + Tab");
    EXPECT_EQ(choice(SwitcherModifier::control, linuxWindowTexts()), "Ctrl + Tab");
}

TEST(SettingsLinesTest, OnlyCommandReplacesTheSystemsSwitcher) {
    EXPECT_FALSE(settings_lines::showsReplacementNote(SwitcherModifier::option));
    EXPECT_TRUE(settings_lines::showsReplacementNote(SwitcherModifier::command));
    EXPECT_FALSE(settings_lines::showsReplacementNote(SwitcherModifier::control));
}

TEST(SettingsLinesTest, EachLayoutIsTitledAndDescribed) {
    EXPECT_EQ(settings_lines::layoutTitle(SwitcherLayout::list, mac()), "List");
    EXPECT_EQ(settings_lines::layoutTitle(SwitcherLayout::grouped, mac()), "Grouped");
    EXPECT_EQ(settings_lines::layoutTitle(SwitcherLayout::grid, mac()), "Grid");
    EXPECT_EQ(settings_lines::layoutDescription(SwitcherLayout::list, mac()), mac().settings.listDescription);
    EXPECT_EQ(settings_lines::layoutDescription(SwitcherLayout::grouped, mac()), mac().settings.groupedDescription);
    EXPECT_EQ(settings_lines::layoutDescription(SwitcherLayout::grid, mac()), mac().settings.gridDescription);
}

TEST(SettingsLinesTest, NumbersAndNamesArePutIntoTheirSentences) {
    EXPECT_EQ(settings_lines::maximumRows(9, mac()).untranslated(), "Show up to 9 rows before scrolling");
    EXPECT_EQ(settings_lines::removeHelp("Mail %1", mac()).untranslated(), "Remove Mail %1 from favourites");
    EXPECT_EQ(settings_lines::activeAppFirstNote(true, mac()), mac().settings.activeAppFirstOnNote);
    EXPECT_EQ(settings_lines::activeAppFirstNote(false, mac()), mac().settings.activeAppFirstOffNote);
}

TEST(SettingsLinesTest, TheNoteOnFavouritesNamesTheKeysThatPin) {
    const auto beginning = [](SwitcherModifier trigger, const TextTable& texts) {
        const std::string note = settings_lines::favouritesFirstNote(trigger, texts).untranslated();
        return note.substr(0, note.find(" while"));
    };
    EXPECT_EQ(beginning(SwitcherModifier::option, macTexts()), "Press ⌘D");
    EXPECT_EQ(beginning(SwitcherModifier::option, linuxTexts()), "Press Ctrl+D");
    EXPECT_EQ(beginning(SwitcherModifier::control, linuxTexts()), "Press Super+D");
    EXPECT_EQ(settings_lines::favouritesFirstNote(SwitcherModifier::option, macTexts()).untranslated(),
              "Press ⌘D while the switcher is open to pin or unpin the highlighted window's app. Favourites are "
              "remembered per app rather than per window, so they survive closing and reopening.");
}

using Lines = std::vector<key_lines::KeyLine>;

TEST(KeyLinesTest, TheKeysOfAnOpenSwitcherAreListed) {
    EXPECT_EQ(key_lines::whileOpen(SwitcherModifier::option, macTexts()),
              (Lines{{"⌘L", "Cycle List → Grouped → Grid"},
                     {"⌘D", "Pin or unpin the highlighted app"},
                     {"⌘1–9", "Jump straight to a row"},
                     {"↑ ↓", "Move the selection"},
                     {"esc", "Close without switching"}}));
    EXPECT_EQ(key_lines::whileOpen(SwitcherModifier::option, linuxTexts()),
              (Lines{{"Ctrl+L", "Cycle List → Grouped → Grid"},
                     {"Ctrl+D", "Pin or unpin the highlighted app"},
                     {"Ctrl+1–9", "Jump straight to a row"},
                     {"↑ ↓", "Move the selection"},
                     {"Esc", "Close without switching"}}));
    EXPECT_EQ(key_lines::whileOpen(SwitcherModifier::control, linuxTexts()).front().keys, "Super+L");
}

TEST(KeyLinesTest, TheSetupWindowListsTheFewThatANewUserNeeds) {
    EXPECT_EQ(key_lines::forSetup(SwitcherModifier::option, macTexts()),
              (Lines{{"⌥⇥", "open / next"}, {"⌥⇧⇥", "previous"}, {"⌥1–9", "jump"}, {"esc", "cancel"}}));
    EXPECT_EQ(key_lines::forSetup(SwitcherModifier::command, macTexts()).front().keys, "⌘⇥");
    EXPECT_EQ(
        key_lines::forSetup(SwitcherModifier::command, linuxTexts()),
        (Lines{
            {"Super+Tab", "open / next"}, {"Super+Shift+Tab", "previous"}, {"Super+1–9", "jump"}, {"Esc", "cancel"}}));
}

}  // namespace
}  // namespace ferrowyn
