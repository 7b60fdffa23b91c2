#include "ui/windows/onboarding_view.h"

#include <QClipboard>
#include <QGuiApplication>

#include "platform/simulated/simulated_system.h"
#include "tests/ui/interface_models.h"
#include "tests/ui/windows/settings_view_fixture.h"
#include "ui/windows/utility_window.h"

namespace ferrowyn {
namespace {

using test::buttonNamed;
using test::visibleButtons;
using test::visibleKeyCaps;
using test::visibleTexts;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

/// The window is told of a new size one turn of the loop after its content.
void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

class OnboardingViewTest : public testing::Test {
protected:
    std::unique_ptr<OnboardingView> makeView(test::UtilityModel& from) {
        return std::make_unique<OnboardingView>(
            from.platform, from.authorizer, from.preferences, [this] { ++closings; },
            [] { return std::string("all is well"); });
    }

    void setTrusted(bool isTrusted) {
        model.desktop.setTrusted(isTrusted);
        model.authorizer.refresh();
    }

    int closings = 0;
    test::UtilityModel model;
    std::unique_ptr<OnboardingView> view = makeView(model);
    const std::string site = "ferrowyn.example";
};

TEST_F(OnboardingViewTest, GrantedItTeachesTheKeys) {
    EXPECT_THAT(visibleTexts(*view),
                ElementsAre("Ferrowyn", "Switch between every open window, not just apps.", "Version 1.0",
                            "Accessibility access granted", "The switcher is running in the menu bar.", "open / next",
                            "previous", "jump", "cancel",
                            "Start typing while the switcher is open to filter by app name or window title.",
                            "Typing keeps it open, and so do the arrow keys: letting go of the modifier no longer "
                            "switches, Return does."));
    EXPECT_THAT(visibleKeyCaps(*view), ElementsAre("⌥⇥", "⌥⇧⇥", "⌥1–9", "esc"));
    EXPECT_THAT(visibleButtons(*view), ElementsAre("Done", site, "Close"));
}

TEST_F(OnboardingViewTest, TheKeysFollowTheTrigger) {
    model.preferences.modifier.set(SwitcherModifier::control);
    EXPECT_THAT(visibleKeyCaps(*view), ElementsAre("⌃⇥", "⌃⇧⇥", "⌃1–9", "esc"));
}

TEST_F(OnboardingViewTest, NotTrustedItSaysWhatIsMissingAndHowToRepairIt) {
    setTrusted(false);
    const UtilityTexts::Onboarding& words = macUtilityTexts().onboarding;
    EXPECT_THAT(visibleTexts(*view),
                ElementsAre("Ferrowyn", "Switch between every open window, not just apps.", "Version 1.0",
                            "Accessibility access required", std::string(words.requiredExplanation), "1.",
                            "Open Privacy & Security → Accessibility.", "2.", "Enable Ferrowyn in the list.", "3.",
                            "Come back here — it detects the change automatically.",
                            "Switch already on, but still not working?", std::string(words.troubleText)));
    EXPECT_THAT(visibleButtons(*view),
                ElementsAre("Open System Settings", "Request Access", "Reveal App", site, "Close"));
}

TEST_F(OnboardingViewTest, ItChangesByItselfWhenTrustComesAndGoes) {
    test::UtilityModel linux(linuxTexts());
    UtilityWindow window(makeView(linux), false);
    window.show();
    settle();
    const int height = window.height();
    linux.desktop.setTrusted(false);
    linux.authorizer.refresh();
    settle();
    EXPECT_THAT(visibleTexts(window), Contains("A window manager is required"));
    EXPECT_THAT(visibleTexts(window), Not(Contains("A window manager is running")));
    EXPECT_GT(window.height(), height) << "the window takes the size of what it shows";
    linux.desktop.setTrusted(true, true);
    linux.desktop.advance(Seconds(1));
    settle();
    EXPECT_THAT(visibleTexts(window), Contains("A window manager is running"));
    EXPECT_EQ(window.height(), height);
}

TEST_F(OnboardingViewTest, EachButtonDoesWhatItSays) {
    setTrusted(false);
    model.desktop.takeControlCalls();
    buttonNamed(*view, "Open System Settings")->click();
    EXPECT_THAT(model.desktop.takeControlCalls(), ElementsAre("settings accessibility"));
    EXPECT_EQ(model.desktop.trustPromptCount(), 0);
    buttonNamed(*view, "Request Access")->click();
    EXPECT_EQ(model.desktop.trustPromptCount(), 1);
    EXPECT_TRUE(model.authorizer.hasRequestedTrust());
    buttonNamed(*view, "Reveal App")->click();
    EXPECT_EQ(model.desktop.application().revealCount, 1);
    buttonNamed(*view, site)->click();
    EXPECT_THAT(model.desktop.takeControlCalls(), ElementsAre("open https://ferrowyn.example"));
    EXPECT_EQ(closings, 0);
    buttonNamed(*view, "Close")->click();
    EXPECT_EQ(closings, 1);
}

TEST_F(OnboardingViewTest, WithoutAHomePageItSaysSoInPlaceOfTheLink) {
    model.desktop.application().bundle.homePage.reset();
    view = makeView(model);
    EXPECT_THAT(visibleTexts(*view), testing::Contains("This build has no home page."));
    EXPECT_THAT(visibleButtons(*view), ElementsAre("Done", "Close"));
}

TEST_F(OnboardingViewTest, DoneClosesIt) {
    buttonNamed(*view, "Done")->click();
    EXPECT_EQ(closings, 1);
}

TEST_F(OnboardingViewTest, OnALinuxDesktopItExplainsTheWindowManager) {
    test::UtilityModel desktop(linuxTexts(), [](SimulatedDesktop& simulated) { simulated.setTrusted(false); });
    const auto setup = makeView(desktop);
    EXPECT_THAT(visibleTexts(*setup), Contains(std::string(linuxUtilityTexts().onboarding.requiredExplanation)));
    EXPECT_THAT(visibleTexts(*setup), Contains(std::string(linuxUtilityTexts().onboarding.firstStep)));
    EXPECT_THAT(visibleButtons(*setup), ElementsAre("Check Again", "Copy Report", "Reveal App", site, "Close"));
    desktop.desktop.setTrusted(true);
    buttonNamed(*setup, "Check Again")->click();
    EXPECT_THAT(visibleTexts(*setup), Contains("The switcher is running in the background."));
    EXPECT_THAT(visibleKeyCaps(*setup), ElementsAre("Alt+Tab", "Alt+Shift+Tab", "Alt+1–9", "Esc"));
}

TEST_F(OnboardingViewTest, AServerThatCannotBeUsedIsCalledThatAndNotAMissingWindowManager) {
    test::UtilityModel desktop(linuxTexts(), [](SimulatedDesktop& simulated) { simulated.makeServerUnusable(); });
    const auto texts = visibleTexts(*makeView(desktop));
    EXPECT_THAT(texts, Contains("This X server cannot be used"));
    EXPECT_THAT(texts, Not(Contains("A window manager is required")));
}

TEST_F(OnboardingViewTest, TheReportIsMadeInTheBackgroundAndCopied) {
    test::UtilityModel desktop(linuxTexts(), [](SimulatedDesktop& simulated) { simulated.setTrusted(false); });
    const auto setup = makeView(desktop);
    QGuiApplication::clipboard()->clear();
    auto* const button = buttonNamed(*setup, "Copy Report");
    desktop.desktop.holdBackgroundWork(true);
    button->click();
    desktop.desktop.settle();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString());
    EXPECT_FALSE(button->isEnabled());
    desktop.desktop.holdBackgroundWork(false);
    desktop.desktop.settle();
    EXPECT_TRUE(button->isEnabled());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("all is well"));
    const OnboardingView without(desktop.platform, desktop.authorizer, desktop.preferences, [] {});
    EXPECT_THAT(visibleButtons(without), Not(Contains("Copy Report")));
}

}  // namespace
}  // namespace ferrowyn
