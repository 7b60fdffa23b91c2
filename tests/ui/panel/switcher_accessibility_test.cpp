#include <gmock/gmock.h>

#include <QAccessible>

#include "tests/ui/panel/switcher_view_fixture.h"

namespace ferrowyn {
namespace {

class SwitcherAccessibilityTest : public test::SwitcherViewFixture {
protected:
    QAccessibleInterface* list() { return QAccessible::queryAccessibleInterface(&view); }
    QString nameOf(int child) { return list()->child(child)->text(QAccessible::Name); }
};

TEST_F(SwitcherAccessibilityTest, RowsAreNamedByTitleApplicationBadgeAndPosition) {
    auto windows = test::PanelModel::windows(3, 3);
    windows[1].isMinimized = true;
    model.viewModel.endSession();
    model.show(windows);
    model.viewModel.beginSession(false);
    view.synchronize();
    ASSERT_NE(list(), nullptr);
    EXPECT_EQ(list()->role(), QAccessible::List);
    ASSERT_EQ(list()->childCount(), 3);
    EXPECT_EQ(nameOf(0), QStringLiteral("Window 1, App 1, 1 of 3"));
    EXPECT_EQ(nameOf(1), QStringLiteral("Window 2, App 2, Minimised, 2 of 3"));
    EXPECT_EQ(list()->child(0)->role(), QAccessible::ListItem);
    EXPECT_EQ(list()->child(0)->parent(), list());
    EXPECT_EQ(list()->indexOfChild(list()->child(2)), 2);
    EXPECT_EQ(list()->child(3), nullptr);
}

TEST_F(SwitcherAccessibilityTest, TheSelectedRowIsTheFocusedOne) {
    EXPECT_TRUE(list()->child(1)->state().selected);
    EXPECT_FALSE(list()->child(0)->state().selected);
    EXPECT_EQ(list()->focusChild(), list()->child(1));
}

TEST_F(SwitcherAccessibilityTest, GroupHeadersAreHeadingsWithTheirCount) {
    model.preferences.layout.set(SwitcherLayout::grouped);
    view.synchronize();
    ASSERT_EQ(list()->childCount(), 12);
    EXPECT_EQ(list()->child(0)->role(), QAccessible::Heading);
    EXPECT_EQ(nameOf(0), QStringLiteral("3 windows"));
    EXPECT_EQ(list()->child(0)->text(QAccessible::Description), QStringLiteral("App 1"));
    EXPECT_EQ(list()->child(0)->childCount(), 0);
    EXPECT_EQ(nameOf(1), QStringLiteral("Window 1, App 1, 1 of 9"));
    EXPECT_EQ(list()->child(4)->role(), QAccessible::Heading);
    for (int index = 0; index < 12; ++index) {
        EXPECT_EQ(list()->indexOfChild(list()->child(index)), index);
    }
}

TEST_F(SwitcherAccessibilityTest, ARowCanBePressedAndPinned) {
    auto* const actions = list()->child(4)->actionInterface();
    ASSERT_NE(actions, nullptr);
    actions->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_THAT(activated, testing::ElementsAre(5U));
    EXPECT_EQ(actions->localizedActionName(QAccessibleActionInterface::toggleAction()), QStringLiteral("Pin app"));
    actions->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_THAT(toggled, testing::ElementsAre(5U));
}

TEST_F(SwitcherAccessibilityTest, FavouritesSaySo) {
    model.favourites.identifiers.set({"App 1"});
    view.synchronize();
    EXPECT_EQ(list()->child(0)->text(QAccessible::Description), QStringLiteral("Favourite"));
    EXPECT_EQ(list()->child(1)->text(QAccessible::Description), QString());
    EXPECT_EQ(list()->child(0)->actionInterface()->localizedActionName(QAccessibleActionInterface::toggleAction()),
              QStringLiteral("Unpin app"));
}

TEST_F(SwitcherAccessibilityTest, RowsThatAreGoneAreInvalid) {
    QAccessibleInterface* const last = list()->child(8);
    ASSERT_TRUE(last->isValid());
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(2, 1));
    view.synchronize();
    EXPECT_FALSE(last->isValid());
    EXPECT_EQ(list()->childCount(), 2);
}

TEST_F(SwitcherAccessibilityTest, WhatStandsAtAPointIsFound) {
    model.preferences.layout.set(SwitcherLayout::grouped);
    view.synchronize();
    for (int index = 0; index < 8; ++index) {
        const QPoint centre = list()->child(index)->rect().center();
        EXPECT_EQ(list()->childAt(centre.x(), centre.y()), list()->child(index)) << index;
    }
    const QPoint corner = view.mapToGlobal(QPoint(1, 1));
    EXPECT_EQ(list()->childAt(corner.x(), corner.y()), nullptr) << "the search line is no child";
}

TEST_F(SwitcherAccessibilityTest, FindingARowMakesObjectsForNoOthers) {
    model.viewModel.endSession();
    model.show(test::PanelModel::windows(10'000, 3));
    model.viewModel.beginSession(false);
    view.synchronize();
    const QRect rect = list()->child(0)->rect();
    const auto first = QAccessible::uniqueId(list()->child(0));
    EXPECT_NE(list()->childAt(rect.center().x(), rect.center().y() + 3 * 53), nullptr);
    const auto fourth = QAccessible::uniqueId(list()->child(3));
    EXPECT_EQ(list()->childAt(rect.center().x(), rect.top() - 5), nullptr) << "nothing, so all would be asked";
    const auto tenth = QAccessible::uniqueId(list()->child(9));
    EXPECT_EQ(fourth, first + 1);
    EXPECT_EQ(tenth, first + 2);
}

TEST_F(SwitcherAccessibilityTest, EmptyAndPermissionStatesAreRead) {
    model.viewModel.insertText("zzz");
    view.synchronize();
    ASSERT_EQ(list()->childCount(), 1);
    EXPECT_EQ(list()->child(0)->role(), QAccessible::StaticText);
    EXPECT_EQ(nameOf(0), QStringLiteral("No matches for “zzz”. Press ⌫ to edit your search"));
    model.setTrusted(false);
    view.synchronize();
    EXPECT_EQ(list()->child(0)->role(), QAccessible::Button);
    EXPECT_EQ(nameOf(0), QStringLiteral("Open Setup"));
    list()->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(permissionRequests, 1);
}

TEST_F(SwitcherAccessibilityTest, TheRowThatASessionOpensWithIsAnnounced) {
    std::vector<std::pair<QAccessible::Event, QString>> announced;
    view.setAnnouncer([&announced](QAccessibleEvent& event) {
        announced.emplace_back(event.type(), event.accessibleInterface()->text(QAccessible::Name));
    });
    view.synchronize();
    EXPECT_TRUE(announced.empty()) << "nobody can see it yet";
    view.show();
    const QString name = QStringLiteral("Window 2, App 2, 2 of 9");
    EXPECT_THAT(announced, testing::Contains(std::pair(QAccessible::Focus, name)));
    view.hide();
}

TEST_F(SwitcherAccessibilityTest, EachSelectionChangeIsAnnounced) {
    std::vector<std::pair<QAccessible::Event, QString>> announced;
    view.setAnnouncer([&announced](QAccessibleEvent& event) {
        announced.emplace_back(event.type(), event.accessibleInterface()->text(QAccessible::Name));
    });
    view.show();
    announced.clear();
    model.viewModel.move(1);
    view.synchronize();
    view.hide();
    const QString name = QStringLiteral("Window 3, App 3, 3 of 9");
    EXPECT_THAT(announced, testing::Contains(std::pair(QAccessible::Focus, name)));
    EXPECT_THAT(announced, testing::Contains(std::pair(QAccessible::Selection, name)));
}

}  // namespace
}  // namespace ferrowyn
