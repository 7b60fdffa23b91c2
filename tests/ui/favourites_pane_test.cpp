#include "ui/windows/favourites_pane.h"

#include "tests/ui/settings_view_fixture.h"
#include "ui/windows/buttons.h"

namespace ferrowyn {
namespace {

using test::buttonNamed;
using test::visibleTexts;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

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
    test::WindowsModel twice(macTexts(), [](SimulatedDesktop& desktop) {
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
    // Nobody lists what does not run: its icon comes from where it is installed, or it gets a stand-in.
    model.pin({"org.example.mail", "org.example.gone"});
    model.desktop.takeIconLoads();
    FavouritesPane shown(model.platformWithRecordedIcons(), model.services);
    shown.grab();
    EXPECT_THAT(model.desktop.takeIconLoads(), ElementsAre("file /Applications/org.example.mail.app", "generic gone"));
    shown.grab();
    EXPECT_THAT(model.desktop.takeIconLoads(), IsEmpty()) << "once is enough";
}

TEST_F(FavouritesPaneTest, RowsThatNobodySeesLoadNoIcons) {
    // Pinning happens in the open switcher, which waits for nobody.
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
