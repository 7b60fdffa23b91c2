#include "tests/x11/windows/program_windows.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/x11/harness/test_desktop.h"
#include "ui/menu/menu_geometry.h"

namespace ferrowyn::x11test {

namespace {

constexpr int menuWidth = 268;

/// The menu while there is no update.
StatusMenu plainMenu(test::Health health) {
    auto menu = test::statusMenu(health);
    std::erase_if(menu, [](const MenuRow& row) { return row.action == MenuRow::Action::downloadUpdate; });
    return menu;
}

bool isGreen(std::uint32_t pixel) {
    const int red = static_cast<int>(pixel >> 16U & 0xFFU), green = static_cast<int>(pixel >> 8U & 0xFFU),
              blue = static_cast<int>(pixel & 0xFFU);
    return green > red + 60 && green > blue + 40;
}

bool isOrange(std::uint32_t pixel) {
    const int red = static_cast<int>(pixel >> 16U & 0xFFU), green = static_cast<int>(pixel >> 8U & 0xFFU),
              blue = static_cast<int>(pixel & 0xFFU);
    return red > green + 40 && green > blue + 40;
}

}  // namespace

std::optional<xcb_window_t> ProgramWindows::waitForActive(const std::string& title) const {
    auto& desktop = desk_.desktop;
    std::optional<xcb_window_t> window;
    const bool isThere = desktop.waitUntil([&] {
        window = desktop.windowTitled(title);
        const auto stacked = desktop.cardinals(desktop.root(), "_NET_CLIENT_LIST_STACKING");
        const auto isTray = [&](xcb_window_t other) {
            const auto types = desktop.cardinals(other, "_NET_WM_WINDOW_TYPE");
            return !types.empty() && types.front() == desktop.atom("_NET_WM_WINDOW_TYPE_DOCK");
        };
        const auto top = std::find_if_not(stacked.rbegin(), stacked.rend(), isTray);
        return window && desktop.activeWindow() == *window && top != stacked.rend() && *top == *window &&
               isDrawn(*window);
    });
    return isThere ? window : std::nullopt;
}

bool ProgramWindows::isDrawn(xcb_window_t window) const {
    constexpr int inset = 6;
    constexpr std::uint32_t bright = 0xE0;
    const auto place = desk_.desktop.placeOf(window);
    if (!place) {
        return false;
    }
    // No other window of these tests, nor the screen behind, is as bright.
    const auto pixel = desk_.desktop.pixel(place->x + place->width - inset, place->y + place->height - inset);
    return (pixel >> 16U & 0xFFU) > bright && (pixel >> 8U & 0xFFU) > bright && (pixel & 0xFFU) > bright;
}

bool ProgramWindows::waitUntilGone(const std::string& title) const {
    return desk_.desktop.waitUntil([&] { return !desk_.findWindow(title); });
}

std::optional<TestDesktop::Place> ProgramWindows::openMenu(test::Health health) const {
    auto& desktop = desk_.desktop;
    std::optional<TestDesktop::Place> icon;
    // A tray moves its icons about while it starts, and says nothing of when it is done.
    int timesSeen = 0;
    const Deadline deadline(patience);
    while (timesSeen < 3 && !deadline.hasPassed()) {
        const auto now = embeddedTrayIcon(desktop);
        timesSeen = now && now == icon ? timesSeen + 1 : 0;
        icon = now;
        static_cast<void>(desktop.waitUntil([] { return false; }, milliseconds{20}));
    }
    return icon ? openMenuAt(*icon, health) : std::nullopt;
}

std::optional<TestDesktop::Place> ProgramWindows::openMenuAt(const TestDesktop::Place& icon,
                                                             test::Health health) const {
    desk_.input.click(icon.x + icon.width / 2, icon.y + icon.height / 2);
    return waitForMenu(health);
}

std::optional<TestDesktop::Place> ProgramWindows::waitForMenu(test::Health health) const {
    const auto& desktop = desk_.desktop;
    const int height = static_cast<int>(MenuGeometry(plainMenu(health), menuWidth).height());
    std::optional<TestDesktop::Place> menu;
    const bool isThere = desk_.desktop.waitUntil([&] {
        const auto window = desktop.visiblePanel();
        menu = window ? desktop.placeOf(*window) : std::nullopt;
        // It holds the keyboard once it can be used.
        return menu && menu->width == menuWidth && menu->height == height && !desktop.keyboardIsFree();
    });
    return isThere ? menu : std::nullopt;
}

bool ProgramWindows::choose(const std::string& row) const {
    const auto menu = openMenu();
    if (menu) {
        clickRow(*menu, row);
    }
    return menu && desk_.desktop.waitForPanel(false);
}

void ProgramWindows::clickRow(const TestDesktop::Place& menu, const std::string& row, test::Health health) const {
    const auto model = plainMenu(health);
    const int index = test::rowTitled(model, row);
    ASSERT_GE(index, 0) << "no row \"" << row << "\"";
    const auto place = MenuGeometry(model, menu.width).row(index);
    desk_.input.click(menu.x + menu.width / 2, menu.y + static_cast<int>(place.midY()));
}

bool ProgramWindows::shows(xcb_window_t window, Mark mark) const {
    const auto place = desk_.desktop.placeOf(window);
    const auto pixels = place ? desk_.desktop.pixels(*place) : std::vector<std::uint32_t>();
    const bool isRight = std::ranges::any_of(pixels, isGreen);
    const bool isWrong = std::ranges::any_of(pixels, isOrange);
    return isRight == (mark == Mark::success) && isWrong == (mark == Mark::warning);
}

void ProgramWindows::expectSwitching() const {
    desk_.use(desk_.window(1));
    desk_.use(desk_.window(2));
    desk_.input.chord({key::leftAlt, key::tab});
    desk_.expectSwitchTo(desk_.window(1));
}

}  // namespace ferrowyn::x11test
