#include "ui/windows/about_view.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QDate>

#include "platform/application.h"
#include "platform/main_loop.h"
#include "platform/simulated/simulated_system.h"
#include "tests/ui/interface_models.h"
#include "tests/ui/windows/settings_view_fixture.h"

namespace ferrowyn {
namespace {

using test::buttonNamed;
using test::visibleButtons;
using test::visibleTexts;
using testing::Contains;
using testing::ElementsAre;

TEST(AboutLinesTest, TheInstallationsOwnCopyrightComesFirst) {
    BundleInfo bundle;
    bundle.copyright = "© 2020 Larkmoor %1";
    EXPECT_EQ(about_lines::copyrightLine(bundle, 2026, macUtilityTexts()).untranslated(), "© 2020 Larkmoor %1");
}

TEST(AboutLinesTest, ABundleWithoutACopyrightShowsTheYear) {
    EXPECT_EQ(about_lines::copyrightLine({}, 2026, macUtilityTexts()).untranslated(), "© 2026 Ferrowyn");
    EXPECT_EQ(about_lines::copyrightLine({}, 2031, macUtilityTexts()).untranslated(), "© 2031 Ferrowyn");
}

TEST(AboutLinesTest, NameAndVersionHaveFallbacks) {
    EXPECT_EQ(about_lines::productName({}), "Ferrowyn");
    EXPECT_EQ(about_lines::versionLine({}, macUtilityTexts()).untranslated(), "Version 1.0");
    const BundleInfo bundle{"Ferrowyn Nightly", "2.1", std::nullopt, ""};
    EXPECT_EQ(about_lines::productName(bundle), "Ferrowyn Nightly");
    EXPECT_EQ(about_lines::versionLine(bundle, macUtilityTexts()).untranslated(), "Version 2.1");
    EXPECT_EQ(about_lines::accessibilitySummary(bundle, macUtilityTexts()).untranslated(),
              "About Ferrowyn Nightly, version 2.1");
}

TEST(AboutLinesTest, TheSiteIsShownWithoutItsScheme) {
    EXPECT_EQ(about_lines::siteName("https://ferrowyn.example/"), "ferrowyn.example");
    EXPECT_EQ(about_lines::siteName("https://ferrowyn.example/about"), "ferrowyn.example/about");
}

TEST(AboutViewTest, ShowsNameVersionTaglineAndCopyright) {
    test::UtilityModel model;
    model.desktop.application().bundle.shortVersion = "1.4";
    model.desktop.application().bundle.copyright = "© Larkmoor";
    AboutView view(model.platform, [] {});
    EXPECT_THAT(visibleTexts(view), ElementsAre("Ferrowyn", "Version 1.4",
                                                "Switch between every open window, not just apps.", "© Larkmoor"));
}

TEST(AboutViewTest, TheYearIsThatOfTheClock) {
    test::UtilityModel model;
    const AboutView view(model.platform, [] {});
    const auto seconds = static_cast<qint64>(model.platform.mainLoop.wallTime().time_since_epoch().count());
    const int year = QDateTime::fromSecsSinceEpoch(seconds).date().year();
    EXPECT_THAT(visibleTexts(view), Contains("© " + std::to_string(year) + " Ferrowyn"));
}

TEST(AboutViewTest, TheYearIsThatOfTheUsersCalendar) {
    test::UtilityModel model;
    model.desktop.application().year = 2569;
    const AboutView view(model.platform, [] {});
    EXPECT_THAT(visibleTexts(view), Contains("© 2569 Ferrowyn"));
}

TEST(AboutViewTest, ItsSummaryIsReadOut) {
    test::UtilityModel model;
    AboutView view(model.platform, [] {});
    auto* const content = view.findChild<AboutContent*>();
    ASSERT_NE(content, nullptr);
    QAccessibleInterface* const read = QAccessible::queryAccessibleInterface(content);
    EXPECT_EQ(read->text(QAccessible::Name), QStringLiteral("About Ferrowyn, version 1.0"));
    EXPECT_EQ(read->role(), QAccessible::Grouping);
}

TEST(AboutViewTest, TheLinkOpensTheSiteAndCloseCloses) {
    test::UtilityModel model;
    int closings = 0;
    AboutView view(model.platform, [&closings] { ++closings; });
    model.desktop.takeControlCalls();
    buttonNamed(view, "ferrowyn.example")->click();
    EXPECT_THAT(model.desktop.takeControlCalls(), ElementsAre("open https://ferrowyn.example"));
    EXPECT_EQ(closings, 0);
    buttonNamed(view, "Close")->click();
    EXPECT_EQ(closings, 1);
}

TEST(AboutViewTest, WithoutAHomePageItSaysSoInPlaceOfTheLink) {
    test::UtilityModel model(macTexts(),
                             [](SimulatedDesktop& desktop) { desktop.application().bundle.homePage.reset(); });
    AboutView view(model.platform, [] {});
    EXPECT_THAT(visibleTexts(view), Contains("This build has no home page."));
    EXPECT_THAT(visibleButtons(view), ElementsAre("Close"));
}

}  // namespace
}  // namespace ferrowyn
