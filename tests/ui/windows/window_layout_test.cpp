#include <QScreen>
#include <QScrollBar>
#include <QTranslator>

#include "tests/ui/windows/settings_view_fixture.h"
#include "ui/windows/favourites_pane.h"
#include "ui/windows/flow_layout.h"
#include "ui/windows/labels.h"
#include "ui/windows/onboarding_view.h"
#include "ui/windows/scroll_areas.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/settings_view.h"
#include "ui/windows/utility_window.h"

namespace ferrowyn {
namespace {

using testing::Each;
using testing::Ge;
using testing::Le;

/// As a language whose words are half as long again.
class WordyTranslator final : public QTranslator {
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text, const char* /*disambiguation*/,
                                    int /*count*/) const override {
        const QString written = QString::fromUtf8(text);
        const bool isOurs = QLatin1String(context) == QLatin1String("Ferrowyn") && written != QLatin1String("%1");
        return isOurs ? written + QStringLiteral(" und ") + written.left(written.size() / 2) : QString();
    }
};

/// The rectangle of a part in the coordinates of the whole.
QRect within(const QWidget& whole, const QWidget& part) {
    return {part.mapTo(&whole, QPoint(0, 0)), part.size()};
}

/// What stands outside of the widget that it is in, or is too small for its own text, by its text.
std::vector<std::string> cutTexts(const QWidget& root) {
    std::vector<std::string> cut;
    for (const auto* const label : root.findChildren<TextLabel*>()) {
        const bool isOutside = !root.rect().contains(within(root, *label));
        const bool isTooLow = label->height() < label->heightForWidth(label->width());
        if (label->isVisibleTo(&root) && (isOutside || isTooLow)) {
            cut.push_back(label->text().toStdString());
        }
    }
    for (const auto* const button : root.findChildren<QAbstractButton*>()) {
        const bool isOutside = !root.rect().contains(within(root, *button));
        const bool isTooNarrow = button->width() < button->minimumSizeHint().width();
        if (button->isVisibleTo(&root) && (isOutside || isTooNarrow)) {
            cut.push_back(button->text().toStdString());
        }
    }
    return cut;
}

class WindowLayoutTest : public testing::Test {
protected:
    WindowLayoutTest() = default;
    ~WindowLayoutTest() override {
        QCoreApplication::removeTranslator(&wordy);
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void speakWordily() { QCoreApplication::installTranslator(&wordy); }

    SettingsView& openSettings() {
        auto content = std::make_unique<SettingsView>(model.platform, model.services);
        SettingsView& view = *content;
        window = std::make_unique<UtilityWindow>(std::move(content), true);
        window->show();
        QCoreApplication::processEvents();
        return view;
    }
    void openSetup() {
        window = std::make_unique<UtilityWindow>(
            std::make_unique<OnboardingView>(
                model.platform, model.authorizer, model.preferences, [] {}, [] { return std::string(); }),
            false);
        window->show();
        QCoreApplication::processEvents();
    }
    /// The form of the pane that is shown, which scrolls.
    static QWidget& form(const SettingsView& view) {
        return *dynamic_cast<QScrollArea&>(*view.findChild<QStackedWidget*>()->currentWidget()).widget();
    }

    WordyTranslator wordy;
    test::UtilityModel model{linuxTexts(), [](SimulatedDesktop& desktop) {
                                 desktop.setTrusted(false);
                                 desktop.setSecureInput(true);
                                 desktop.loginItem().current = LoginItem::Status::requiresApproval;
                             }};
    std::unique_ptr<UtilityWindow> window;
};

TEST_F(WindowLayoutTest, NothingIsCutHoweverNarrowTheSettingsWindow) {
    model.pin({"org.example.mail"});
    for (const bool isWordy : {false, true}) {
        if (isWordy) {
            speakWordily();
        }
        SettingsView& view = openSettings();
        for (const QSize& size : {QSize(1, 1), QSize(720, 500), QSize(1200, 900)}) {
            window->resize(size);
            for (const auto pane : allSettingsPanes) {
                view.select(pane);
                QCoreApplication::processEvents();
                const QWidget& shown = form(view);
                EXPECT_LE(shown.width(), shown.parentWidget()->width())
                    << rawValue(pane) << " in " << window->width() << (isWordy ? " wordy" : "");
                EXPECT_THAT(cutTexts(shown), testing::IsEmpty()) << rawValue(pane) << " in " << window->width();
            }
        }
    }
}

TEST_F(WindowLayoutTest, TheSettingsWindowStartsAndEndsAtItsSizes) {
    openSettings();
    EXPECT_EQ(window->size(), QSize(720, 500));
    window->resize(1, 1);
    EXPECT_EQ(window->height(), 340);
    EXPECT_THAT(window->width(), testing::AllOf(Ge(560), Le(640)));
}

TEST_F(WindowLayoutTest, ALongTitleMakesTheSidebarWider) {
    EXPECT_EQ(openSettings().findChild<SettingsSidebar*>()->width(), SettingsSidebar::barWidth);
    speakWordily();
    const auto& sidebar = *openSettings().findChild<SettingsSidebar*>();
    EXPECT_GT(sidebar.width(), SettingsSidebar::barWidth);
    EXPECT_LE(sidebar.width(), SettingsSidebar::widestBar);
}

TEST_F(WindowLayoutTest, TheSetupWindowGrowsDownwardWithItsTexts) {
    openSetup();
    EXPECT_THAT(cutTexts(*window), testing::IsEmpty());
    const QSize before = window->size();
    speakWordily();
    openSetup();
    EXPECT_THAT(cutTexts(*window), testing::IsEmpty());
    EXPECT_EQ(window->width(), before.width());
    EXPECT_GT(window->height(), before.height());
}

TEST_F(WindowLayoutTest, OnALowScreenTheSetupWindowScrollsToItsLastButton) {
    speakWordily();
    openSetup();
    auto& area = *window->findChild<FittingScrollArea*>();
    // Higher than the screen of the tests, which cannot be made lower.
    area.widget()->setMinimumHeight(2000);
    QCoreApplication::processEvents();
    const QRect screen = window->screen()->availableGeometry();
    EXPECT_LE(window->height(), screen.height());
    QAbstractButton& close = *test::buttonNamed(*window, "Close und Cl");
    ASSERT_TRUE(close.visibleRegion().isEmpty());
    area.ensureWidgetVisible(&close);
    EXPECT_EQ(close.visibleRegion().boundingRect(), close.rect());
    area.widget()->setMinimumHeight(0);
    QCoreApplication::processEvents();
    EXPECT_FALSE(area.verticalScrollBar()->isVisible());
}

TEST_F(WindowLayoutTest, InARightToLeftLanguageEverythingStandsTheOtherWayRound) {
    model.pin({"org.example.mail"});
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    SettingsView& view = openSettings();
    const auto& sidebar = *view.findChild<SettingsSidebar*>();
    EXPECT_EQ(sidebar.geometry().right(), view.rect().right());
    EXPECT_EQ(view.grab().toImage().pixelColor(view.width() - 4, view.height() - 4), UtilityTheme::current().sidebar);
    EXPECT_EQ(view.grab().toImage().pixelColor(4, view.height() - 4), UtilityTheme::current().ground);

    view.select(SettingsPane::favourites);
    QCoreApplication::processEvents();
    auto& row = *view.findChild<FavouriteRow*>();
    const QImage picture = row.grab().toImage();
    EXPECT_LT(row.removeButton().geometry().center().x(), 30);
    EXPECT_NE(picture.pixelColor(row.width() - 26, row.height() / 2), UtilityTheme::current().groupFill)
        << "the icon stands at the right";

    const QAbstractButton& first = *test::buttonNamed(form(view), "Show favourite apps first");
    const QImage control = const_cast<QAbstractButton&>(first).grab().toImage();
    EXPECT_EQ(control.pixelColor(14 + 26, first.height() / 2), UtilityTheme::current().accent)
        << "the switch stands at the left, its knob at the left end while it is on";
    const QImage words = control.copy(first.width() - 14 - 30, 0, 30, first.height());
    int inked = 0;
    for (int x = 0; x < words.width(); ++x) {
        inked += words.pixelColor(x, words.height() / 2) == control.pixelColor(4, 4) ? 0 : 1;
    }
    EXPECT_GT(inked, 3) << "its text begins at the right";
}

TEST_F(WindowLayoutTest, ASymbolStandsBesideTheFirstLine) {
    TextLabel label(Phrase::verbatim("A text that needs several lines here"), TextStyle::body);
    label.setSymbol("checkmark.circle.fill", Tone::success);
    label.resize(100, label.heightForWidth(100) + 20);
    const QImage picture = label.grab().toImage();
    int top = picture.height();
    int bottom = 0;
    for (int y = 0; y < picture.height(); ++y) {
        if (picture.pixelColor(2, y) != picture.pixelColor(0, 0)) {
            top = std::min(top, y);
            bottom = y;
        }
    }
    const double firstLine = 10 + label.fontMetrics().height() / 2.0;
    EXPECT_NEAR((top + bottom) / 2.0, firstLine, 1.5);
}

TEST(FlowLayoutTest, GoesOnOnTheNextLineWhereTheWidthEnds) {
    QWidget box;
    auto* const layout = new FlowLayout(8);
    box.setLayout(layout);
    std::vector<QWidget*> parts;
    for (int index = 0; index < 3; ++index) {
        parts.push_back(new QWidget);
        parts.back()->setFixedSize(100, 20);
        layout->addWidget(parts.back());
    }
    EXPECT_EQ(layout->sizeHint(), QSize(316, 20));
    EXPECT_EQ(layout->minimumSize(), QSize(100, 20));
    EXPECT_EQ(layout->heightForWidth(316), 20);
    EXPECT_EQ(layout->heightForWidth(315), 48);
    EXPECT_EQ(layout->heightForWidth(150), 76);
    layout->setGeometry(QRect(0, 0, 220, 48));
    EXPECT_EQ(parts[1]->geometry(), QRect(108, 0, 100, 20));
    EXPECT_EQ(parts[2]->geometry(), QRect(0, 28, 100, 20));
    box.setLayoutDirection(Qt::RightToLeft);
    layout->setGeometry(QRect(0, 0, 220, 48));
    EXPECT_EQ(parts[0]->geometry(), QRect(120, 0, 100, 20));
    EXPECT_EQ(parts[2]->geometry(), QRect(120, 28, 100, 20));
}

}  // namespace
}  // namespace ferrowyn
