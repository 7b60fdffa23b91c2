#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <QTemporaryDir>
#include <QTranslator>
#include <string>

#include "tests/ui/interface_models.h"
#include "tests/ui/windows/settings_view_fixture.h"
#include "ui/common/translation.h"
#include "ui/windows/about_view.h"
#include "ui/windows/onboarding_view.h"

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
    test::UtilityModel model(macTexts(), [](SimulatedDesktop& desktop) { desktop.setSecureInput(true); });
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
    test::UtilityModel model(
        linuxTexts(), [](SimulatedDesktop& desktop) { desktop.loginItem().current = LoginItem::Status::notFound; });
    SettingsView settings(model.platform, model.services);
    settings.select(SettingsPane::general);
    const auto said = [&] { return words(*settings.findChild<QStackedWidget*>()->currentWidget()); };
    EXPECT_THAT(said(), Contains("¶Ferrowyn must be able to write to the autostart folder to launch at login."));
    model.desktop.loginItem().current = LoginItem::Status::requiresApproval;
    model.launchAtLogin.refresh();
    EXPECT_THAT(said(), Contains("¶Your desktop keeps Ferrowyn from starting: allow it in the autostart settings, or "
                                 "turn this off and on again."));
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

/// The least that the toolkit accepts as the file of a translation: a language, and one message that the program does
/// not have.
QByteArray translationFile(const QByteArray& language) {
    QByteArray file = QByteArray::fromHex("3cb86418caef9c95cd211cbf60a1bddd");
    const auto append = [&file](char tag, const QByteArray& content) {
        QByteArray length(4, '\0');
        length[3] = static_cast<char>(content.size());
        file += tag + length + content;
    };
    append('\xa7', language);
    append('\x42', QByteArray(8, '\0'));
    append('\x69', QByteArray(4, '\0'));
    return file;
}

class InstalledTranslationTest : public testing::Test {
protected:
    InstalledTranslationTest() { qputenv("XDG_DATA_HOME", folder.path().toLocal8Bit()); }
    ~InstalledTranslationTest() override {
        qDeleteAll(qApp->findChildren<QTranslator*>());
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
        qunsetenv("XDG_DATA_HOME");
    }

    void install(const QString& language) const {
        const QDir data(folder.path());
        ASSERT_TRUE(data.mkpath(QStringLiteral("ferrowyn/translations")));
        QFile file(data.filePath(QStringLiteral("ferrowyn/translations/ferrowyn_%1.qm").arg(language)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(translationFile(language.toUtf8()));
    }

    QTemporaryDir folder;
};

TEST_F(InstalledTranslationTest, TheWindowsRunInTheDirectionOfTheirLanguage) {
    install(QStringLiteral("ar"));
    install(QStringLiteral("de"));
    EXPECT_TRUE(installTranslations(*qApp, QLocale(QLocale::Arabic)));
    EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::RightToLeft);
    EXPECT_TRUE(installTranslations(*qApp, QLocale(QLocale::German)));
    EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::LeftToRight);
}

TEST_F(InstalledTranslationTest, WithoutATranslationTheTextsAndTheirDirectionStayAsWritten) {
    EXPECT_FALSE(installTranslations(*qApp, QLocale(QLocale::Arabic)));
    EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::LeftToRight);
}

}  // namespace
}  // namespace ferrowyn
