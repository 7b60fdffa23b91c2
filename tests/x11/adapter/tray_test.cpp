#include "tests/x11/adapter/tray_fixture.h"

namespace ferrowyn::x11test {
namespace {

using testing::ElementsAre;
using Host = LinuxTrayIcon::Host;

constexpr std::uint8_t leftButton = 1;
constexpr std::uint8_t rightButton = 3;
constexpr int menuWidth = 268;

/// The menu opens below an icon at the upper edge and above one at the lower, over it or as near as the screen lets it.
void expectBeside(const TestDesktop::Place& icon, const TestDesktop::Place& menu) {
    constexpr int near = 16;
    EXPECT_EQ(menu.width, menuWidth);
    const bool isBelow = menu.y >= icon.y && menu.y <= icon.y + icon.height + near;
    const bool isAbove = menu.y + menu.height <= icon.y + icon.height && menu.y + menu.height >= icon.y - near;
    EXPECT_TRUE(isBelow || isAbove) << "icon at " << icon.y << ", menu from " << menu.y << " to "
                                    << menu.y + menu.height;
    EXPECT_LE(menu.x, icon.x + icon.width);
    EXPECT_GE(menu.x + menu.width, icon.x);
    EXPECT_GE(menu.x, 0);
    EXPECT_LE(menu.x + menu.width, 1280);
}

void expectBothButtonsToOpenTheMenu(TrayRig& rig) {
    for (const auto button : {leftButton, rightButton}) {
        const auto menu = rig.openMenu(button);
        ASSERT_TRUE(menu) << "button " << int{button};
        expectBeside(*rig.iconPlace(), *menu);
        rig.input.tap(key::escape);
        ASSERT_TRUE(rig.waitUntilMenuIsGone());
    }
}

TEST(TrayTest, AHostOfStatusNotifiersShowsTheIconAndBothButtonsOpenTheMenuBesideIt) {
    TrayRig rig;
    const auto host = rig.startHost("lxqt-panel");
    ASSERT_TRUE(rig.waitForHost(Host::statusNotifier));
    expectBothButtonsToOpenTheMenu(rig);
}

TEST(TrayTest, XfcesPanelEmbedsTheIconSinceItKeepsTheSecondButtonOfStatusNotifiers) {
    TrayRig rig;
    const auto host = rig.startHost("xfce4-panel");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    expectBothButtonsToOpenTheMenu(rig);
}

TEST(TrayTest, TheIconComesBackWhenXfcesPanelIsRestarted) {
    TrayRig rig;
    auto host = rig.startHost("xfce4-panel");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    ASSERT_TRUE(rig.waitForIcon());
    host.reset();
    ASSERT_TRUE(rig.waitForHost(Host::none));
    host = rig.startHost("xfce4-panel");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    EXPECT_TRUE(rig.openMenu(rightButton));
}

TEST(TrayTest, XfcesPanelShowsAStatusNotifierWhereTheIconCannotBeEmbedded) {
    TrayRig rig({.hasFallback = false});
    const auto host = rig.startHost("xfce4-panel");
    ASSERT_TRUE(rig.waitForHost(Host::statusNotifier));
    const auto menu = rig.openMenu(leftButton);
    ASSERT_TRUE(menu);
    expectBeside(*rig.iconPlace(), *menu);
}

TEST(TrayTest, ATrayThatEmbedsWindowsShowsTheIconAndBothButtonsOpenTheMenuBesideIt) {
    TrayRig rig;
    const auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    expectBothButtonsToOpenTheMenu(rig);
}

TEST(TrayTest, OnAScreenOfDoubleResolutionTheMenuIsBesideTheIconToo) {
    TrayRig rig({.hasBus = false, .scale = "2", .screen = "2560x1600x24"});
    const auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    const auto menu = rig.openMenu(leftButton);
    ASSERT_TRUE(menu);
    const auto icon = rig.iconPlace();
    ASSERT_TRUE(icon);
    EXPECT_EQ(menu->width, 2 * menuWidth);
    EXPECT_LE(menu->x, icon->x + icon->width);
    EXPECT_GE(menu->x + menu->width, icon->x);
    EXPECT_LE(menu->x + menu->width, 2560);
    EXPECT_LE(menu->y + menu->height, icon->y);
    EXPECT_GE(menu->y + menu->height, icon->y - 32);
}

TEST(TrayTest, TheIconComesBackWhenTheHostIsRestarted) {
    TrayRig rig;
    auto host = rig.startHost("lxqt-panel");
    ASSERT_TRUE(rig.waitForHost(Host::statusNotifier));
    ASSERT_TRUE(rig.waitForIcon());
    host->process().signal(SIGKILL);
    ASSERT_TRUE(rig.waitForHost(Host::none));
    host = rig.startHost("lxqt-panel");
    ASSERT_TRUE(rig.waitForHost(Host::statusNotifier));
    EXPECT_TRUE(rig.openMenu(leftButton));
}

TEST(TrayTest, TheIconComesBackWhenTheTrayThatEmbedsWindowsIsRestarted) {
    TrayRig rig;
    auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    ASSERT_TRUE(rig.waitForIcon());
    host->process().signal(SIGKILL);
    ASSERT_TRUE(rig.waitForHost(Host::none));
    host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    EXPECT_TRUE(rig.openMenu(rightButton));
}

TEST(TrayTest, WithoutASessionBusTheIconIsEmbedded) {
    TrayRig rig({.hasBus = false});
    const auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    EXPECT_TRUE(rig.openMenu(leftButton));
}

TEST(TrayTest, WhenTheBusGoesTheIconIsEmbedded) {
    TrayRig rig;
    const auto windows = rig.desktop.clientList();
    const auto panel = rig.startHost("lxqt-panel");
    ASSERT_TRUE(rig.waitForHost(Host::statusNotifier));
    rig.bus.kill();
    ASSERT_TRUE(rig.waitForHost(Host::none));
    panel->process().signal(SIGKILL);
    // The next one takes its place, which is to be free.
    ASSERT_TRUE(TrayRig::runUntil([&] { return rig.desktop.clientList() == windows; }));
    const auto tray = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    EXPECT_TRUE(rig.waitForIcon()) << "the tray said: " << tray->process().output();
}

TEST(TrayTest, TheEmbeddedIconGivesWayToAHostOfStatusNotifiers) {
    TrayRig rig;
    const auto tray = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    const auto embedded = rig.waitForIcon();
    ASSERT_TRUE(embedded);
    const auto panel = rig.startHost("lxqt-panel");
    ASSERT_TRUE(rig.waitForHost(Host::statusNotifier));
    ASSERT_TRUE(TrayRig::runUntil([&] { return rig.desktop.pixel(embedded->x + 4, embedded->y + 4) != iconColor; }));
    EXPECT_TRUE(rig.openMenu(leftButton));
}

TEST(TrayTest, ARowIsChosenByTheMouseAfterTheMenuHasLetGoOfTheKeyboard) {
    TrayRig rig({.hasBus = false});
    const auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    bool wasFree = false;
    rig.item->setActionHandler([&](const MenuRow& row) {
        wasFree = rig.desktop.keyboardIsFree();
        rig.chosen.push_back(row.action);
    });
    const auto menu = rig.openMenu(leftButton);
    ASSERT_TRUE(menu);
    const int row = test::rowTitled(rig.item->openPopup()->menu(), "Open Switcher");
    const Rect place = rig.item->openPopup()->geometryNow().row(row);
    rig.input.click(menu->x + 100, menu->y + static_cast<int>(place.midY()));
    ASSERT_TRUE(TrayRig::runUntil([&] { return !rig.chosen.empty(); }));
    EXPECT_THAT(rig.chosen, ElementsAre(MenuRow::Action::showSwitcher));
    EXPECT_TRUE(wasFree);
    EXPECT_TRUE(rig.waitUntilMenuIsGone());
}

TEST(TrayTest, ARowIsChosenByTheKeyboard) {
    TrayRig rig({.hasBus = false});
    const auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    ASSERT_TRUE(rig.openMenu(rightButton));
    rig.input.tap(key::end);
    rig.input.tap(key::up);
    rig.input.tap(key::enter);
    ASSERT_TRUE(TrayRig::runUntil([&] { return rig.chosen.size() == 1; }));
    ASSERT_TRUE(rig.waitUntilMenuIsGone());
    ASSERT_TRUE(rig.openMenu(rightButton));
    rig.input.chord({key::leftControl, key::q});
    ASSERT_TRUE(TrayRig::runUntil([&] { return rig.chosen.size() == 2; }));
    EXPECT_THAT(rig.chosen, ElementsAre(MenuRow::Action::openAbout, MenuRow::Action::quit));
}

TEST(TrayTest, TheButtonIsPressedOnTheIconDraggedToARowAndReleased) {
    TrayRig rig({.hasBus = false});
    const auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    const auto icon = rig.waitForIcon();
    ASSERT_TRUE(icon);
    rig.input.movePointer(icon->x + 5, icon->y + 5);
    rig.input.pressButton();
    ASSERT_TRUE(TrayRig::runUntil([&] { return rig.desktop.visiblePanel() && !rig.desktop.keyboardIsFree(); }));
    const auto menu = *rig.desktop.placeOf(*rig.desktop.visiblePanel());
    const int row = test::rowTitled(rig.item->openPopup()->menu(), "Setup Guide…");
    const int y = menu.y + static_cast<int>(rig.item->openPopup()->geometryNow().row(row).midY());
    rig.input.movePointer(menu.x + 90, y);
    rig.input.movePointer(menu.x + 100, y);
    rig.input.releaseButton();
    ASSERT_TRUE(TrayRig::runUntil([&] { return !rig.chosen.empty(); }));
    EXPECT_THAT(rig.chosen, ElementsAre(MenuRow::Action::openOnboarding));
}

TEST(TrayTest, AClickElsewhereAndASecondClickOnTheIconCloseTheMenu) {
    TrayRig rig({.hasBus = false});
    const auto host = rig.startHost("trayer");
    ASSERT_TRUE(rig.waitForHost(Host::fallback));
    ASSERT_TRUE(rig.openMenu(leftButton));
    rig.input.click(100, 100);
    ASSERT_TRUE(rig.waitUntilMenuIsGone());
    ASSERT_TRUE(rig.openMenu(leftButton));
    const auto icon = rig.iconPlace();
    ASSERT_TRUE(icon);
    rig.input.click(icon->x + 5, icon->y + 5);
    ASSERT_TRUE(rig.waitUntilMenuIsGone());
    EXPECT_TRUE(rig.chosen.empty());
}

}  // namespace
}  // namespace ferrowyn::x11test
