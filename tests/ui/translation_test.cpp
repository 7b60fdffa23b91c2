#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTranslator>
#include <string>

#include "tests/ui/settings_view_fixture.h"
#include "tests/ui/widget_search.h"
#include "tests/ui/windows_model.h"
#include "ui/about_view.h"
#include "ui/onboarding_view.h"
#include "ui/translated.h"

namespace ferrowyn {
namespace {

using testing::Contains;
using testing::Each;
using testing::StartsWith;

/// Puts a mark before every text of the program, so that what was not asked for is seen.
class MarkingTranslator final : public QTranslator {
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text, const char* /*disambiguation*/,
                                    int /*count*/) const override {
        const bool isOurs = std::string_view(context) == "Ferrowyn" && std::string_view(text) != "%1";
        return isOurs ? QStringLiteral("¶") + QString::fromUtf8(text) : QString();
    }
};

class TranslationTest : public testing::Test {
protected:
    TranslationTest() { QCoreApplication::installTranslator(&translator); }
    ~TranslationTest() override { QCoreApplication::removeTranslator(&translator); }

    MarkingTranslator translator;
};

/// Names, numbers and addresses are the same in every language.
std::vector<std::string> words(const QWidget& widget) {
    auto all = test::visibleTexts(widget);
    for (auto& button : test::visibleButtons(widget)) {
        all.push_back(std::move(button));
    }
    std::erase_if(all, [](const std::string& text) {
        return text == "Ferrowyn" || text == "ferrowyn.example" || text == "1." || text == "2." || text == "3.";
    });
    return all;
}

TEST_F(TranslationTest, EveryTextOfEveryWindowCanBeTranslated) {
    test::WindowsModel model(macTexts(), [](SimulatedDesktop& desktop) { desktop.setSecureInput(true); });
    model.pin({"org.example.mail"});
    SettingsView settings(model.platform, model.services);
    for (const auto pane : allSettingsPanes) {
        settings.select(pane);
        EXPECT_THAT(words(*settings.findChild<QStackedWidget*>()->currentWidget()), Each(StartsWith("¶")))
            << rawValue(pane);
    }
    const AboutView about(model.platform, [] {});
    EXPECT_THAT(words(about), Each(StartsWith("¶")));
    const OnboardingView setup(model.platform, model.authorizer, model.preferences, [] {});
    EXPECT_THAT(words(setup), Each(StartsWith("¶")));
    model.desktop.setTrusted(false);
    model.authorizer.refresh();
    EXPECT_THAT(words(setup), Each(StartsWith("¶")));
}

TEST_F(TranslationTest, WhatTheServicesSayCanBeTranslated) {
    test::WindowsModel model(
        linuxTexts(), [](SimulatedDesktop& desktop) { desktop.loginItem().current = LoginItem::Status::notFound; });
    SettingsView settings(model.platform, model.services);
    settings.select(SettingsPane::general);
    const auto said = [&] { return words(*settings.findChild<QStackedWidget*>()->currentWidget()); };
    EXPECT_THAT(said(), Contains("¶Ferrowyn must be able to write to the autostart folder to launch at login."));
    model.desktop.loginItem().current = LoginItem::Status::requiresApproval;
    model.launchAtLogin.refresh();
    EXPECT_THAT(said(), Contains("¶Allow Ferrowyn in your desktop's settings for autostart."));
    auto& http = model.desktop.httpClient();
    model.updates.check();
    http.answer(http.requestCount() - 1, HttpResponse{404, {}});
    EXPECT_THAT(said(), Contains("¶The update server replied with 404."));
    model.updates.check();
    http.answer(http.requestCount() - 1, HttpResponse{200, "[]"});
    EXPECT_THAT(said(), Contains("¶The update manifest could not be read."));
}

TEST_F(TranslationTest, WhatIsPutIntoATextIsNotTranslated) {
    EXPECT_EQ(translated(Phrase{"Remove %1 from favourites", {"Close"}}),
              QStringLiteral("¶Remove Close from favourites"));
    EXPECT_EQ(translated(Phrase::verbatim("Close")), QStringLiteral("Close"));
}

}  // namespace
}  // namespace ferrowyn
