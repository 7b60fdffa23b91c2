#include <gmock/gmock.h>

#include <QAccessible>

#include "tests/ui/status_menu_fixture.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;

class StatusMenuAccessibilityTest : public test::StatusMenuFixture {
protected:
    [[nodiscard]] QAccessibleInterface* menu() const { return QAccessible::queryAccessibleInterface(popup.get()); }
    [[nodiscard]] QAccessibleInterface* item(const std::string& title) const { return menu()->child(row(title)); }
};

TEST_F(StatusMenuAccessibilityTest, TheMenuHasARowForEachOfItsRows) {
    ASSERT_NE(menu(), nullptr);
    EXPECT_EQ(menu()->role(), QAccessible::PopupMenu);
    EXPECT_EQ(menu()->text(QAccessible::Name), "Ferrowyn");
    ASSERT_EQ(menu()->childCount(), static_cast<int>(popup->menu().size()));
    EXPECT_EQ(menu()->child(1)->role(), QAccessible::Separator);
    EXPECT_EQ(item("LAYOUT")->role(), QAccessible::StaticText);
    EXPECT_EQ(item("Grid")->role(), QAccessible::MenuItem);
    EXPECT_EQ(item("Grid")->text(QAccessible::Name), "Grid");
    EXPECT_EQ(item("Grid")->parent(), menu());
    EXPECT_EQ(menu()->indexOfChild(item("Grid")), row("Grid"));
    EXPECT_EQ(menu()->child(menu()->childCount()), nullptr);
}

TEST_F(StatusMenuAccessibilityTest, TheHeaderIsTheButtonSettingsAndSaysHowTheProgramIsDoing) {
    QAccessibleInterface* const header = menu()->child(0);
    EXPECT_EQ(header->role(), QAccessible::Button);
    EXPECT_EQ(header->text(QAccessible::Name), "Settings");
    EXPECT_EQ(header->text(QAccessible::Description), "Ferrowyn, Ready");
    ASSERT_NE(header->actionInterface(), nullptr);
    header->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(happened, ElementsAre("closed", "chosen"));
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().action, MenuRow::Action::openSettings);
}

TEST_F(StatusMenuAccessibilityTest, ChecksAndDisabledRowsSaySo) {
    EXPECT_TRUE(item("List")->state().checkable);
    EXPECT_TRUE(item("List")->state().checked);
    EXPECT_TRUE(item("Grid")->state().checkable);
    EXPECT_FALSE(item("Grid")->state().checked);
    EXPECT_FALSE(item("Open Switcher")->state().checkable);
    EXPECT_TRUE(item("Launch at Login")->state().checkable);
    EXPECT_TRUE(item("9 windows tracked")->state().disabled);
    EXPECT_FALSE(item("Open Switcher")->state().disabled);
    EXPECT_TRUE(item("9 windows tracked")->actionInterface()->actionNames().isEmpty());
}

TEST_F(StatusMenuAccessibilityTest, KeysAndTooltipsAreRead) {
    EXPECT_EQ(item("Quit Ferrowyn")->text(QAccessible::Accelerator), "Ctrl+Q");
    EXPECT_EQ(item("Launch at Login")->text(QAccessible::Description), "Turned off in the desktop's own settings.");
}

TEST_F(StatusMenuAccessibilityTest, TheSelectedRowIsTheFocusedOne) {
    EXPECT_EQ(menu()->focusChild(), nullptr);
    key(Qt::Key_Down);
    EXPECT_EQ(menu()->focusChild(), item("Open Switcher"));
    EXPECT_TRUE(item("Open Switcher")->state().focused);
    EXPECT_FALSE(item("Grid")->state().focused);
}

TEST_F(StatusMenuAccessibilityTest, ARowCanBePressed) {
    item("Grouped")->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen.front().representedValue, "grouped");
}

TEST_F(StatusMenuAccessibilityTest, RowsAreWhereTheyAreDrawn) {
    const QRect place = item("Grid")->rect();
    EXPECT_EQ(place.height(), 25);
    EXPECT_EQ(place.width(), 268);
    EXPECT_EQ(menu()->childAt(place.center().x(), place.center().y()), item("Grid"));
    EXPECT_EQ(menu()->child(0)->rect().size(), QSize(26, 26)) << "the gear, which is what a click has to hit";
}

TEST_F(StatusMenuAccessibilityTest, RowsThatAreGoneAreInvalid) {
    QAccessibleInterface* const last = menu()->child(menu()->childCount() - 1);
    ASSERT_TRUE(last->isValid());
    popup->setMenu({popup->menu().front()});
    EXPECT_FALSE(last->isValid());
    EXPECT_EQ(menu()->childCount(), 1);
}

}  // namespace
}  // namespace ferrowyn
