#include "ui/windows/settings_model.h"

#include <gtest/gtest.h>

#include "tests/ui/windows/settings_view_fixture.h"
#include "ui/windows/favourites_pane.h"

namespace ferrowyn {
namespace {

using settings_lines::StatusLine;
using test::buttonNamed;
using test::visibleTexts;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Tint = StatusLine::Tint;

const UtilityTexts& mac() {
    return macUtilityTexts();
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
    const auto choice = [](SwitcherModifier modifier, const UtilityTexts& texts) {
        return settings_lines::summonChoice(modifier, texts).untranslated();
    };
    EXPECT_EQ(choice(SwitcherModifier::option, mac()), "Option + Tab");
    EXPECT_EQ(choice(SwitcherModifier::command, mac()), "Command + Tab");
    EXPECT_EQ(choice(SwitcherModifier::control, mac()), "Control + Tab");
    EXPECT_EQ(choice(SwitcherModifier::option, linuxUtilityTexts()), "Alt + Tab");
    EXPECT_EQ(choice(SwitcherModifier::command, linuxUtilityTexts()), "Super + Tab");
    EXPECT_EQ(choice(SwitcherModifier::control, linuxUtilityTexts()), "Ctrl + Tab");
}

TEST(SettingsLinesTest, OnlyCommandReplacesTheSystemsSwitcher) {
    EXPECT_FALSE(settings_lines::showsReplacementNote(SwitcherModifier::option));
    EXPECT_TRUE(settings_lines::showsReplacementNote(SwitcherModifier::command));
    EXPECT_FALSE(settings_lines::showsReplacementNote(SwitcherModifier::control));
}

TEST(SettingsLinesTest, EachLayoutIsDescribed) {
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

class FavouritesPaneTest : public test::SettingsViewTest {
protected:
    FavouritesPaneTest() {
        model.desktop.setInstalledApplicationName("org.example.mail", "Mail");
        model.desktop.setInstalledApplicationName("org.example.maps", "Maps");
    }

    std::vector<std::string> rows() {
        std::vector<std::string> names;
        for (const auto* const row : pane.findChildren<FavouriteRow*>()) {
            if (row->isVisibleTo(&pane)) {
                names.push_back(row->accessibleName().toStdString());
            }
        }
        return names;
    }

    QWidget& pane = open(SettingsPane::favourites);
};

TEST_F(FavouritesPaneTest, SaysThatNothingIsPinned) {
    EXPECT_THAT(visibleTexts(pane), Contains("Nothing pinned yet."));
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_FALSE(buttonNamed(pane, "Remove All")->isEnabled());
}

TEST_F(FavouritesPaneTest, ListsThePinnedAppsInTheirOrder) {
    model.pin({"org.example.maps", "org.example.gone", "org.example.mail"});
    EXPECT_THAT(rows(), ElementsAre("Maps", "gone", "Mail"));
    EXPECT_THAT(visibleTexts(pane), Not(Contains("Nothing pinned yet.")));
    EXPECT_TRUE(buttonNamed(pane, "Remove All")->isEnabled());
}

TEST_F(FavouritesPaneTest, RemovesOneApp) {
    model.pin({"org.example.maps", "org.example.mail"});
    QAbstractButton& remove = *buttonNamed(pane, "Remove Maps from favourites");
    EXPECT_EQ(remove.toolTip(), QStringLiteral("Remove Maps from favourites"));
    remove.click();
    EXPECT_THAT(model.favourites.bundleIdentifiers().get(), ElementsAre("org.example.mail"));
    EXPECT_THAT(rows(), ElementsAre("Mail"));
}

TEST_F(FavouritesPaneTest, RemovingTheLastOneSaysThatNothingIsPinned) {
    model.pin({"org.example.mail"});
    buttonNamed(pane, "Remove Mail from favourites")->click();
    EXPECT_THAT(visibleTexts(pane), Contains("Nothing pinned yet."));
    EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(FavouritesPaneTest, RemovesAll) {
    model.pin({"org.example.maps", "org.example.mail"});
    buttonNamed(pane, "Remove All")->click();
    EXPECT_THAT(model.favourites.bundleIdentifiers().get(), IsEmpty());
    EXPECT_THAT(visibleTexts(pane), Contains("Nothing pinned yet."));
}

TEST_F(FavouritesPaneTest, AnIdentifierThatIsThereTwiceLosesItsFirst) {
    test::UtilityModel twice(macTexts(), [](SimulatedDesktop& desktop) {
        desktop.userDefaults().set("switcher.favouriteBundleIdentifiers",
                                   std::vector<std::string>{"a.same", "a.other", "a.same"});
    });
    FavouritesPane both(twice.platform, twice.services);
    buttonNamed(both, "Remove same from favourites")->click();
    EXPECT_THAT(twice.favourites.bundleIdentifiers().get(), ElementsAre("a.other", "a.same"));
}

TEST_F(FavouritesPaneTest, TheKeyboardStaysInTheListWhenARowGoes) {
    view.resize(720, 500);
    view.show();
    view.activateWindow();
    QCoreApplication::processEvents();
    model.pin({"org.example.maps", "org.example.gone", "org.example.mail"});
    buttonNamed(pane, "Remove gone from favourites")->setFocus();
    press(*buttonNamed(pane, "Remove gone from favourites"), Qt::Key_Space);
    EXPECT_THAT(rows(), ElementsAre("Maps", "Mail"));
    EXPECT_TRUE(buttonNamed(pane, "Remove Mail from favourites")->hasFocus());
    press(*buttonNamed(pane, "Remove Mail from favourites"), Qt::Key_Space);
    EXPECT_TRUE(buttonNamed(pane, "Remove Maps from favourites")->hasFocus());
}

TEST_F(FavouritesPaneTest, AnAppKeepsItsIconWhileItDoesNotRun) {
    // An application that does not run is not listed: its icon comes from where it is installed, or it gets a stand-in.
    model.pin({"org.example.mail", "org.example.gone"});
    model.desktop.takeIconLoads();
    FavouritesPane shown(model.platformWithRecordedIcons(), model.services);
    shown.grab();
    EXPECT_THAT(model.desktop.takeIconLoads(), ElementsAre("file /Applications/org.example.mail.app", "generic gone"));
    shown.grab();
    EXPECT_THAT(model.desktop.takeIconLoads(), IsEmpty()) << "once is enough";
}

TEST_F(FavouritesPaneTest, RowsThatNobodySeesLoadNoIcons) {
    // Pinning happens in the open switcher, which must not wait for an icon.
    const FavouritesPane hidden(model.platformWithRecordedIcons(), model.services);
    model.desktop.takeIconLoads();
    model.pin({"org.example.mail", "org.example.gone"});
    QCoreApplication::processEvents();
    EXPECT_THAT(model.desktop.takeIconLoads(), IsEmpty());
}

TEST_F(FavouritesPaneTest, NamesFromOtherProgramsAreOneLine) {
    model.desktop.setInstalledApplicationName("org.example.odd", "Two\nlines\tand a tab");
    model.pin({"org.example.odd"});
    EXPECT_THAT(rows(), ElementsAre("Two lines and a tab"));
}

TEST_F(FavouritesPaneTest, OnlyNamesThatAreCutHaveATooltip) {
    model.desktop.setInstalledApplicationName("org.example.long", std::string(200, 'w'));
    model.pin({"org.example.mail", "org.example.long"});
    view.resize(720, 500);
    view.show();
    QCoreApplication::processEvents();
    auto all = pane.findChildren<FavouriteRow*>();
    all.removeIf([this](const FavouriteRow* row) { return !row->isVisibleTo(&pane); });
    ASSERT_EQ(all.size(), 2);
    EXPECT_TRUE(all[0]->toolTip().isEmpty());
    EXPECT_EQ(all[1]->toolTip(), QString(200, QLatin1Char('w')));
}

}  // namespace
}  // namespace ferrowyn
