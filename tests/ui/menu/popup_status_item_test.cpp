#include "ui/menu/popup_status_item.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>
#include <utility>

#include "tests/ui/status_menu_model.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A tray that shows nothing and is pressed by the test.
class FakeTrayIcon final : public TrayIcon {
public:
    void setIcon(const std::string& value) override { symbol = value; }
    void setToolTip(const std::string& value) override { toolTip = value; }
    void setPressHandler(std::function<void(const Rect&)> handler) override { press = std::move(handler); }
    [[nodiscard]] bool isShown() const override { return true; }

    std::string symbol;
    std::string toolTip;
    std::function<void(const Rect&)> press;
};

class PopupStatusItemTest : public testing::Test {
protected:
    PopupStatusItemTest() {
        item.setMenu(test::statusMenu(test::Health::ready));
        item.setActionHandler([this](const MenuRow& row) {
            wasOpen = item.openPopup() != nullptr;
            chosen.push_back(row.action);
        });
    }
    void key(int code) const {
        QKeyEvent event(QEvent::KeyPress, code, Qt::NoModifier);
        QApplication::sendEvent(item.openPopup(), &event);
    }

    FakeTrayIcon icon;
    PopupStatusItem item{icon, linuxTexts()};
    std::vector<MenuRow::Action> chosen;
    bool wasOpen = false;
};

TEST_F(PopupStatusItemTest, TheIconShowsTheButton) {
    item.setButton({"exclamationmark.triangle", "Ferrowyn — Accessibility access required", "Ferrowyn"});
    EXPECT_EQ(icon.symbol, "exclamationmark.triangle");
    EXPECT_EQ(icon.toolTip, "Ferrowyn — Accessibility access required");
}

TEST_F(PopupStatusItemTest, APressOpensTheMenuBesideTheIconAndASecondOneClosesIt) {
    icon.press({300, 2, 22, 22});
    ASSERT_NE(item.openPopup(), nullptr);
    EXPECT_TRUE(item.openPopup()->isVisible());
    EXPECT_EQ(item.openPopup()->pos(), QPoint(300, 28));
    icon.press({300, 2, 22, 22});
    EXPECT_EQ(item.openPopup(), nullptr);
    icon.press({300, 2, 22, 22});
    EXPECT_NE(item.openPopup(), nullptr) << "and a third one opens it again";
}

TEST_F(PopupStatusItemTest, APressOutsideEveryScreenOpensTheMenuOnOneOfThem) {
    icon.press({-5000, -5000, 0, 0});
    ASSERT_NE(item.openPopup(), nullptr);
    EXPECT_TRUE(QGuiApplication::primaryScreen()->geometry().contains(item.openPopup()->pos()));
}

TEST_F(PopupStatusItemTest, TheChosenRowIsToldInATurnOfItsOwnAfterTheMenuHasClosed) {
    icon.press({300, 2, 22, 22});
    key(Qt::Key_Down);
    key(Qt::Key_Return);
    EXPECT_EQ(item.openPopup(), nullptr);
    EXPECT_THAT(chosen, IsEmpty());
    QCoreApplication::processEvents();
    EXPECT_THAT(chosen, ElementsAre(MenuRow::Action::showSwitcher));
    EXPECT_FALSE(wasOpen);
}

TEST_F(PopupStatusItemTest, AnOpenMenuFollowsAndTheNextOneIsTheNewOne) {
    icon.press({300, 2, 22, 22});
    const StatusMenu changed = test::statusMenu(test::Health::repeatedTimeouts);
    item.setMenu(changed);
    EXPECT_EQ(item.openPopup()->menu(), changed);
    key(Qt::Key_Escape);
    icon.press({300, 2, 22, 22});
    EXPECT_EQ(item.openPopup()->menu(), changed);
}

TEST_F(PopupStatusItemTest, AMenuThatIsReplacedByTheActionItselfIsShownNextTime) {
    item.setActionHandler([this](const MenuRow&) { item.setMenu({}); });
    icon.press({300, 2, 22, 22});
    key(Qt::Key_Down);
    key(Qt::Key_Return);
    QCoreApplication::processEvents();
    icon.press({300, 2, 22, 22});
    EXPECT_THAT(item.openPopup()->menu(), IsEmpty());
}

TEST(PopupStatusItemLifeTest, ItMayGoWhileItsMenuIsOpen) {
    FakeTrayIcon icon;
    {
        PopupStatusItem item(icon, linuxTexts());
        item.setMenu(test::statusMenu(test::Health::ready));
        icon.press({300, 2, 22, 22});
        ASSERT_NE(item.openPopup(), nullptr);
    }
    EXPECT_FALSE(icon.press) << "the icon has nobody left to tell";
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

/// How far from transparent the picture is on average, 0 to 255.
double coverage(const QImage& image) {
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            sum += image.pixelColor(x, y).alpha();
        }
    }
    return sum / image.width() / image.height();
}

TEST(TraySymbolTest, EverySymbolOfTheMenuAndTheButtonIsDrawn) {
    std::vector<std::string> symbols{"macwindow.on.rectangle", "exclamationmark.triangle", "keyboard.badge.ellipsis",
                                     "checkmark"};
    for (const auto health : test::allHealths) {
        for (const auto& row : test::statusMenu(health)) {
            symbols.push_back(row.symbol);
        }
    }
    for (const auto& symbol : symbols) {
        if (!symbol.empty()) {
            EXPECT_GT(coverage(traySymbol(symbol, 22, QColor(Qt::black))), 10) << symbol;
        }
    }
    EXPECT_EQ(coverage(traySymbol("no.such.symbol", 22, QColor(Qt::black))), 0);
}

TEST(TraySymbolTest, TheTraysOwnColourIsTaken) {
    const QImage image = traySymbol("power", 32, QColor(0x12, 0xAB, 0x34));
    int opaquePixels = 0;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 32; ++x) {
            if (image.pixelColor(x, y).alpha() == 255) {
                EXPECT_EQ(image.pixelColor(x, y), QColor(0x12, 0xAB, 0x34));
                ++opaquePixels;
            }
        }
    }
    EXPECT_GT(opaquePixels, 20);
}

TEST(TraySymbolTest, WithoutAColourItIsTheDesktopsTextColourWithARimOfTheOpposite) {
    const QPalette before = QGuiApplication::palette();
    for (const bool isDark : {false, true}) {
        QPalette palette;
        palette.setColor(QPalette::Window, isDark ? QColor(0x20, 0x20, 0x20) : QColor(0xF0, 0xF0, 0xF0));
        QGuiApplication::setPalette(palette);
        const QImage image = traySymbol("macwindow", 22, std::nullopt);
        const QImage withoutRim = traySymbol("macwindow", 22, isDark ? QColor(Qt::white) : QColor(Qt::black));
        bool hasText = false;
        bool hasRim = false;
        for (int y = 0; y < 22; ++y) {
            for (int x = 0; x < 22; ++x) {
                const QColor pixel = image.pixelColor(x, y);
                hasText = hasText || (pixel.alpha() == 255 && (pixel.lightness() > 200) == isDark);
                hasRim = hasRim || (withoutRim.pixelColor(x, y).alpha() == 0 && pixel.alpha() > 40 &&
                                    (pixel.lightness() < 100) == isDark);
            }
        }
        EXPECT_TRUE(hasText) << isDark;
        EXPECT_TRUE(hasRim) << isDark;
    }
    QGuiApplication::setPalette(before);
}

}  // namespace
}  // namespace ferrowyn
