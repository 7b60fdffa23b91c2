#include <gmock/gmock.h>

#include <QHelpEvent>
#include <QScreen>
#include <QToolTip>
#include <QWheelEvent>

#include "tests/ui/menu/status_menu_fixture.h"
#include "ui/common/colors.h"
#include "ui/menu/menu_row_views.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StatusMenuPopupTest : public test::StatusMenuFixture {};

TEST_F(StatusMenuPopupTest, RowsHaveTheirHeightsAndFillTheWidth) {
    const MenuGeometry& geometry = popup->geometryNow();
    EXPECT_EQ(geometry.width(), 268);
    EXPECT_EQ(popup->width(), 268);
    double top = 6;
    for (int index = 0; index < geometry.rowCount(); ++index) {
        double height = 25;
        switch (popup->rowAt(index).kind) {
            case MenuRow::Kind::header:
                height = 58;
                break;
            case MenuRow::Kind::separator:
                height = 11;
                break;
            case MenuRow::Kind::sectionTitle:
                height = 22;
                break;
            case MenuRow::Kind::item:
                break;
        }
        EXPECT_EQ(geometry.row(index), (Rect{0, top, 268, height})) << index;
        top += height;
    }
    EXPECT_EQ(popup->height(), top + 6);
}

TEST_F(StatusMenuPopupTest, AMenuWithLongTextsGrowsAndItsHeaderStretchesWithIt) {
    open(test::statusMenu(test::Health::secureInput));
    EXPECT_GT(popup->geometryNow().width(), 268);
    EXPECT_LE(popup->geometryNow().width(), 420);
    EXPECT_EQ(popup->geometryNow().row(0).width, popup->geometryNow().width());
    StatusMenu menu = test::statusMenu(test::Health::ready);
    menu.back().title = std::string(500, 'W');
    popup->setMenu(menu);
    EXPECT_EQ(popup->geometryNow().width(), 420) << "a title that fits no menu is elided";
}

TEST_F(StatusMenuPopupTest, TheSelectionFollowsThePointerOverEnabledRowsOnly) {
    move(centreOf("Open Switcher"));
    EXPECT_EQ(selectedTitle(), "Open Switcher");
    move(centreOf("9 windows tracked"));
    EXPECT_EQ(selectedTitle(), "none");
    move(centreOf("LAYOUT"));
    EXPECT_EQ(selectedTitle(), "none");
    move(centreOf("Grid"));
    EXPECT_EQ(selectedTitle(), "Grid");
    move(QPointF(100, 30));
    EXPECT_EQ(selectedTitle(), "none") << "the header is no row to be lit";
    move(centreOf("Grid"));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(popup.get(), &leave);
    EXPECT_EQ(selectedTitle(), "none");
}

TEST_F(StatusMenuPopupTest, AClickChoosesTheRowAfterTheMenuHasClosed) {
    click(centreOf("Grouped"));
    EXPECT_THAT(happened, ElementsAre("closed", "chosen"));
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front(), popup->rowAt(row("Grouped")));
    EXPECT_FALSE(popup->isVisible());
}

TEST_F(StatusMenuPopupTest, DisabledRowsSectionTitlesAndSeparatorsDoNothing) {
    click(centreOf("9 windows tracked"));
    click(centreOf("LAYOUT"));
    const Rect separator = popup->geometryNow().row(1);
    click({separator.midX(), separator.midY()});
    EXPECT_THAT(happened, IsEmpty());
    EXPECT_TRUE(popup->isVisible());
}

TEST_F(StatusMenuPopupTest, AClickOnTheGearOpensTheSettingsAndOneElsewhereOnTheHeaderDoesNothing) {
    click({30, 30});
    click({150, 40});
    EXPECT_THAT(happened, IsEmpty());
    click(gear());
    EXPECT_THAT(happened, ElementsAre("closed", "chosen"));
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().kind, MenuRow::Kind::header);
    EXPECT_EQ(chosen.front().action, MenuRow::Action::openSettings);
}

TEST_F(StatusMenuPopupTest, AReleaseBeforeThePointerHasMovedIsTheEndOfTheClickThatOpenedTheMenu) {
    release(centreOf("Quit Ferrowyn"));
    EXPECT_THAT(happened, IsEmpty());
    move(centreOf("Quit Ferrowyn"));
    release(centreOf("Quit Ferrowyn"));
    EXPECT_THAT(happened, ElementsAre("closed", "chosen"));
}

TEST_F(StatusMenuPopupTest, ThePointerUnderWhichTheMenuOpensSelectsNothing) {
    struct Place {
        QPointF position;
        std::string selected;
        bool isOnGear;
    };
    for (const Place& place : {Place{centreOf("Grid"), "Grid", false}, Place{gear(), "none", true}}) {
        const QPoint global = popup->mapToGlobal(place.position.toPoint());
        popup->close();
        QCursor::setPos(global);
        open(test::statusMenu(test::Health::ready));
        ASSERT_EQ(popup->mapFromGlobal(QCursor::pos()), place.position.toPoint()) << "it opens where it was";
        move(place.position);
        move(place.position + QPointF(1, 1));
        EXPECT_EQ(selectedTitle(), "none") << "a hand that trembles";
        EXPECT_FALSE(popup->isHoveringGear());
        move(place.position + QPointF(12, 0));
        EXPECT_EQ(selectedTitle(), place.selected) << "a hand that moves";
        move(place.position);
        EXPECT_EQ(popup->isHoveringGear(), place.isOnGear);
    }
}

TEST_F(StatusMenuPopupTest, APressOutsideClosesTheMenu) {
    press({-20, 10});
    EXPECT_THAT(happened, ElementsAre("closed"));
    EXPECT_FALSE(popup->isVisible());
}

TEST_F(StatusMenuPopupTest, AWindowThatTakesTheFocusClosesTheMenu) {
    QWidget window;
    window.show();
    window.activateWindow();
    for (int turn = 0; turn < 50 && popup->isVisible(); ++turn) {
        QCoreApplication::processEvents();
    }
    EXPECT_FALSE(popup->isVisible());
    EXPECT_THAT(happened, ElementsAre("closed"));
}

TEST_F(StatusMenuPopupTest, ArrowsGoThroughEverythingThatCanBeChosenAndAround) {
    key(Qt::Key_Down);
    EXPECT_EQ(selectedTitle(), "Open Switcher");
    key(Qt::Key_Down);
    EXPECT_EQ(selectedTitle(), "List");
    key(Qt::Key_Up);
    key(Qt::Key_Up);
    EXPECT_EQ(popup->selectedRow(), 0) << "the header's gear";
    key(Qt::Key_Up);
    EXPECT_EQ(selectedTitle(), "Quit Ferrowyn");
    key(Qt::Key_Down);
    EXPECT_EQ(popup->selectedRow(), 0);
    key(Qt::Key_End);
    EXPECT_EQ(selectedTitle(), "Quit Ferrowyn");
    key(Qt::Key_Home);
    EXPECT_EQ(popup->selectedRow(), 0);
    key(Qt::Key_Return);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().action, MenuRow::Action::openSettings);
}

TEST_F(StatusMenuPopupTest, UpFromNothingGoesToTheLastRow) {
    key(Qt::Key_Up);
    EXPECT_EQ(selectedTitle(), "Quit Ferrowyn");
}

TEST_F(StatusMenuPopupTest, EnterAndSpaceChooseTheSelectedRow) {
    for (const int code : {int{Qt::Key_Return}, int{Qt::Key_Enter}, int{Qt::Key_Space}}) {
        open(test::statusMenu(test::Health::ready));
        chosen.clear();
        key(code);
        EXPECT_THAT(chosen, IsEmpty()) << "nothing is selected";
        key(Qt::Key_Down);
        key(code);
        ASSERT_EQ(chosen.size(), 1U);
        EXPECT_EQ(chosen.front().action, MenuRow::Action::showSwitcher);
    }
}

TEST_F(StatusMenuPopupTest, EscapeClosesTheMenuAndChoosesNothing) {
    key(Qt::Key_Down);
    key(Qt::Key_Escape);
    EXPECT_THAT(happened, ElementsAre("closed"));
}

TEST_F(StatusMenuPopupTest, KeyEquivalentsChooseTheirRowWithControlOnly) {
    key(Qt::Key_Q, "Q", Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_THAT(chosen, IsEmpty());
    key(Qt::Key_Comma, ",", Qt::ControlModifier);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().title, "Settings…");
    open(test::statusMenu(test::Health::ready));
    key(Qt::Key_Q, "\x11", Qt::ControlModifier);
    ASSERT_EQ(chosen.size(), 2U);
    EXPECT_EQ(chosen.back().action, MenuRow::Action::quit);
}

TEST_F(StatusMenuPopupTest, TypingGoesToTheNextTitleThatBeginsSo) {
    key(Qt::Key_G, "g");
    EXPECT_EQ(selectedTitle(), "Grouped");
    key(Qt::Key_G, "g");
    EXPECT_EQ(selectedTitle(), "Grid");
    key(Qt::Key_9, "9");
    EXPECT_EQ(selectedTitle(), "Grid") << "disabled rows are passed over";
}

TEST_F(StatusMenuPopupTest, KeyEquivalentsAreShownAsThisDesktopWritesThem) {
    EXPECT_EQ(MenuRowView::keyEquivalentText(popup->rowAt(row("Quit Ferrowyn")), linuxTexts()), "Ctrl+Q");
    EXPECT_EQ(MenuRowView::keyEquivalentText(popup->rowAt(row("Settings…")), linuxTexts()), "Ctrl+,");
    EXPECT_EQ(MenuRowView::keyEquivalentText(popup->rowAt(row("Quit Ferrowyn")), macTexts()), "⌘Q");
    EXPECT_EQ(MenuRowView::keyEquivalentText(popup->rowAt(row("Grid")), linuxTexts()), "");
}

TEST_F(StatusMenuPopupTest, AnOpenMenuFollowsAndKeepsTheSelectionOnTheRowThatDoesTheSame) {
    move(centreOf("Grid"));
    popup->setMenu(test::statusMenu(test::Health::trustRevoked));
    EXPECT_EQ(selectedTitle(), "Grid");
    EXPECT_EQ(popup->height(), popup->geometryNow().height());
    click(centreOf("Re-enable Shortcut"));
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().action, MenuRow::Action::retryInput);
}

TEST_F(StatusMenuPopupTest, OnAScreenThatIsTooSmallTheMenuScrolls) {
    StatusMenu menu = test::statusMenu(test::Health::ready);
    const MenuRow filler = menu.at(static_cast<std::size_t>(test::rowTitled(menu, "Grid")));
    menu.insert(menu.begin() + 10, 40, filler);
    open(menu);
    const QRect available = popup->screen()->availableGeometry();
    ASSERT_GT(popup->geometryNow().height(), available.height());
    EXPECT_EQ(popup->height(), available.height());
    EXPECT_TRUE(available.contains(popup->geometry()));
    EXPECT_EQ(popup->rowRect(0).y, 6);

    key(Qt::Key_End);
    const Rect last = popup->rowRect(popup->geometryNow().rowCount() - 1);
    EXPECT_EQ(last.maxY() + 6, popup->height()) << "what is selected is to be seen";
    click({last.midX(), last.midY()});
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().title, "Quit Ferrowyn");

    open(menu);
    const QPointF place(100, 300);
    QWheelEvent down(place, popup->mapToGlobal(place), QPoint(), QPoint(0, -240), Qt::NoButton, Qt::NoModifier,
                     Qt::NoScrollPhase, false);
    QApplication::sendEvent(popup.get(), &down);
    EXPECT_EQ(popup->rowRect(0).y, 6 - 50) << "two notches are two rows";
    key(Qt::Key_Home);
    EXPECT_EQ(popup->rowRect(0).y, 6);
}

TEST_F(StatusMenuPopupTest, ASelectionThatCannotBeChosenAnyMoreIsDropped) {
    move(centreOf("Open Switcher"));
    popup->setMenu(test::statusMenu(test::Health::accessRequired));
    EXPECT_EQ(selectedTitle(), "none");
}

TEST_F(StatusMenuPopupTest, ARowsTooltipIsShownForDisabledRowsToo) {
    StatusMenu menu = test::statusMenu(test::Health::ready);
    MenuRow& login = menu.at(static_cast<std::size_t>(test::rowTitled(menu, "Launch at Login")));
    login.isEnabled = false;
    login.tooltip = "Not <possible> here.";
    popup->setMenu(menu);
    const QPoint place = centreOf("Launch at Login").toPoint();
    QHelpEvent help(QEvent::ToolTip, place, popup->mapToGlobal(place));
    QApplication::sendEvent(popup.get(), &help);
    EXPECT_EQ(QToolTip::text(), "Not &lt;possible&gt; here.") << "never taken for markup";
    key(Qt::Key_Escape);
}

TEST_F(StatusMenuPopupTest, TheSelectedRowStandsOnTheAccent) {
    move(centreOf("Grid"));
    const Rect place = popup->geometryNow().row(row("Grid"));
    const QImage image = picture();
    EXPECT_EQ(image.pixelColor(10, static_cast<int>(place.midY())), popup->colors().selection);
    EXPECT_EQ(image.pixelColor(3, static_cast<int>(place.midY())), popup->colors().background) << "inset by 6";
    EXPECT_TRUE(shows(image, {54, place.y, 60, place.height}, popup->colors().selectionText));
    move(centreOf("List"));
    EXPECT_EQ(picture().pixelColor(10, static_cast<int>(place.midY())), popup->colors().background);
}

TEST_F(StatusMenuPopupTest, CheckMarksStandInTheirColumn) {
    const QImage image = picture(2);
    const auto checkColumn = [&](const std::string& title) {
        const Rect place = popup->geometryNow().row(row(title));
        return Rect{13, place.y + 4, 14, place.height - 8};
    };
    EXPECT_TRUE(shows(image, checkColumn("List"), popup->colors().label));
    EXPECT_FALSE(shows(image, checkColumn("Grouped"), popup->colors().label));
    EXPECT_FALSE(shows(image, checkColumn("Grid"), popup->colors().label));
}

TEST_F(StatusMenuPopupTest, SymbolsHaveTheirTint) {
    open(test::statusMenu(test::Health::trustRevoked));
    const QImage image = picture(2);
    const auto symbolColumn = [&](const std::string& title) {
        const Rect place = popup->geometryNow().row(row(title));
        return Rect{31, place.y + 5, 14, place.height - 10};
    };
    EXPECT_TRUE(shows(image, symbolColumn("Re-enable Shortcut"), popup->colors().orange));
    EXPECT_TRUE(shows(image, symbolColumn("Update to 1.4.0…"), popup->colors().accent));
    EXPECT_TRUE(shows(image, symbolColumn("About Ferrowyn"), popup->colors().label));
    EXPECT_FALSE(shows(image, symbolColumn("About Ferrowyn"), popup->colors().orange));
    EXPECT_TRUE(shows(image, symbolColumn("9 windows tracked"), popup->colors().disabledLabel));
}

TEST_F(StatusMenuPopupTest, InARightToLeftLanguageEverythingStandsTheOtherWayRound) {
    popup->setLayoutDirection(Qt::RightToLeft);
    const Rect header = popup->geometryNow().row(0);
    const Rect gear = popup->gearRect(0);
    EXPECT_EQ(gear.x, menu_header::gearRightInset);
    const QImage image = picture(2);
    EXPECT_TRUE(shows(image, gear, popup->colors().label));
    EXPECT_FALSE(shows(image, MenuHeaderView::gearArea(header), popup->colors().label)) << "the icon stands there";

    const Rect list = popup->geometryNow().row(row("List"));
    const Rect check{list.maxX() - MenuGeometry::checkCenter - 6, list.y, 12, list.height};
    EXPECT_TRUE(shows(image, check, popup->colors().label));
    const Rect quit = popup->geometryNow().row(row("Quit Ferrowyn"));
    EXPECT_TRUE(shows(image, {MenuGeometry::inset, quit.y, 30, quit.height}, popup->colors().tertiaryLabel));
    const double beforeTitle = quit.maxX() - MenuGeometry::titleLeft;
    EXPECT_TRUE(shows(image, {beforeTitle - 40, quit.y, 40, quit.height}, popup->colors().label));

    move({gear.midX(), gear.midY()});
    EXPECT_TRUE(popup->isHoveringGear());
    click({gear.midX(), gear.midY()});
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().action, MenuRow::Action::openSettings);
}

TEST_F(StatusMenuPopupTest, TheTitlesSuffixIsLessImportantThanTheTitle) {
    const Rect place = popup->geometryNow().row(row("Open Switcher"));
    const QImage image = picture(2);
    EXPECT_TRUE(shows(image, {54, place.y, 60, place.height}, popup->colors().label));
    EXPECT_TRUE(shows(image, {130, place.y, 100, place.height}, popup->colors().tertiaryLabel));
    EXPECT_FALSE(shows(image, {160, place.y, 90, place.height}, popup->colors().label));
}

TEST_F(StatusMenuPopupTest, EveryTextCanBeReadOnItsGround) {
    for (const bool dark : {false, true}) {
        const auto colors = MenuColors::fromTheme(Theme::fromPalette(paletteOf(dark), false));
        const auto ratio = [&](const QColor& color) { return contrast::ratio(color, colors.background); };
        EXPECT_GE(ratio(colors.label), 4.5);
        EXPECT_GE(ratio(colors.secondaryLabel), 4.5);
        EXPECT_GE(ratio(colors.orange), 4.5);
        EXPECT_GE(ratio(colors.tertiaryLabel), 3);
        EXPECT_GE(ratio(colors.disabledLabel), 3);
        EXPECT_GE(ratio(colors.accent), 3);
        EXPECT_GE(contrast::ratio(colors.selectionText, colors.selection), 4.5);
        EXPECT_GE(contrast::ratio(contrast::blended(colors.selectionTextSecondary, colors.selection), colors.selection),
                  4.5);
    }
}

TEST_F(StatusMenuPopupTest, TheMenuIsLightOrDarkAsTheDesktopIs) {
    const QColor dark = popup->colors().background;
    popup->setPalette(paletteOf(false));
    EXPECT_GT(popup->colors().background.lightness(), 200);
    EXPECT_LT(dark.lightness(), 60);
    EXPECT_EQ(picture().pixelColor(100, 3), popup->colors().background);
}

}  // namespace
}  // namespace ferrowyn
