#include "tests/x11/demo/demo_steps.h"

#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"

namespace ferrowyn::x11test {
namespace {

/// Rows of 52 with 1 between, the search line, the insets and the hints.
int listHeight(int rows) {
    return rows * 52 + (rows - 1) + 16 + 56 + 34;
}

/// Whether the selection stands in this row of the list and not in the next: the left ends of the rows differ.
bool isSelected(const TestDesktop& desktop, const TestDesktop::Place& panel, int row) {
    const int left = panel.x + 12;
    const int middle = panel.y + 56 + 8 + row * 53 + 26;
    return desktop.pixel(left, middle) != desktop.pixel(left, middle + 53);
}

}  // namespace

void SwitchingDemo::run() {
    quickSwitch();
    heldSession();
    gridLayout();
    typedFilter();
    digitJump();
    pin();
    restoreMinimised();
}

void SwitchingDemo::quickSwitch() {
    DemoStage::step("A quick Alt+Tab toggles to the window used before");
    stage_.finish(
        "Alt+Tab pressed and released",
        [&] {
            desk_.input.chord({key::leftAlt, key::tab});
        },
        desk_.build);
    stage_.picture("after-quick-switch");
}

void SwitchingDemo::heldSession() {
    DemoStage::step("Alt held, Tab three times, released");
    stage_.open("Alt held, Tab, Tab, Tab", 3);
    stage_.pictureOfPanel("held", [this](const auto& place) {
        return place.height == listHeight(6) && isSelected(desk_.desktop, place, 3);
    });
    stage_.finish(
        "Alt released", [&] { desk_.input.release(key::leftAlt); }, desk_.files);
}

void SwitchingDemo::gridLayout() {
    DemoStage::step("Ctrl+L, twice: the grid");
    stage_.open("Alt held, Tab");
    desk_.input.chord({key::leftControl, key::l});
    desk_.input.chord({key::leftControl, key::l});
    stage_.pictureOfPanel("grid", [](const auto& place) { return place.width == 760; });
    desk_.input.tap(key::right);
    desk_.input.tap(key::right);
    stage_.finish("Right, Right, Return", key::enter, desk_.editor);
    stage_.open("Alt held, Tab");
    desk_.input.chord({key::leftControl, key::l});
    stage_.pictureOfPanel("list-again", [](const auto& place) { return place.width == 640; });
    stage_.finish("Escape", key::escape, desk_.editor);
}

void SwitchingDemo::typedFilter() {
    DemoStage::step("Typing filters; the window on the other desktop is found");
    stage_.open("Alt held, Tab");
    stage_.type("notes f", {key::n, key::o, key::t, key::e, key::s, key::space, key::f});
    stage_.pictureOfPanel("filtered", [](const auto& place) { return place.height == listHeight(1); });
    stage_.finish("Return", key::enter, desk_.notes);
    stage_.report(desk_.desktop.waitUntil([&] { return desk_.desktop.currentDesktop() == 1; }), "the desktop followed");
}

void SwitchingDemo::digitJump() {
    DemoStage::step("A digit jumps straight to its row, back on the first desktop");
    stage_.open("Alt held, Tab");
    stage_.pictureOfPanel("digits", [](const auto& place) { return place.height == listHeight(6); });
    stage_.finish("4", key::digit4, desk_.build);
    stage_.report(desk_.desktop.waitUntil([&] { return desk_.desktop.currentDesktop() == 0; }), "the desktop followed");
}

void SwitchingDemo::pin() {
    DemoStage::step("Ctrl+D pins the editor: it leads every list from now on");
    stage_.open("Alt held, Tab");
    stage_.type("mousepad", {key::m, key::o, key::u, key::s, key::e, key::p, key::a, key::d});
    desk_.input.chord({key::leftControl, key::d});
    stage_.pictureOfPanel("pinned", [](const auto& place) { return place.height == listHeight(1); });
    stage_.finish("Return", key::enter, desk_.editor);
    desk_.desktop.activate(desk_.shell);
    stage_.report(desk_.desktop.waitForActiveWindow(desk_.shell) && desk_.program->waitForFirst(desk_.shell),
                  "the shell was used in between");
    stage_.open("Alt held, Tab");
    stage_.pictureOfPanel("favourites-first", [](const auto& place) { return place.height == listHeight(6); });
    stage_.finish("1", key::digit1, desk_.editor);
}

void SwitchingDemo::restoreMinimised() {
    DemoStage::step("A minimised window comes back");
    stage_.open("Alt held, Tab");
    stage_.type("calc", {key::c, key::a, key::l, key::c});
    stage_.pictureOfPanel("minimised", [](const auto& place) { return place.height == listHeight(1); });
    stage_.finish("Return", key::enter, desk_.calculator);
    stage_.report(desk_.desktop.waitUntil([&] { return desk_.desktop.isViewable(desk_.calculator); }),
                  "it is on the screen");
    stage_.picture("restored");
}

namespace {

constexpr int menuWidth = 268;
/// From the menu's lower edge to the middle of "Settings…": the margin, "Quit", a line, "About", "Setup Guide".
constexpr int settingsAboveLowerEdge = 6 + 25 + 11 + 25 + 25 + 12;
/// In the settings window: the third row of the sidebar, and the layouts' buttons in the pane behind it.
constexpr int appearanceX = 60, appearanceY = 14 + 2 * 30 + 15;
constexpr int listX = 303, gridX = 608, layoutsY = 122;
constexpr int gridWidth = 760;

}  // namespace

void WindowsDemo::run() {
    statusMenu();
    changedSetting();
    setupWindow();
}

void WindowsDemo::statusMenu() {
    DemoStage::step("The program's icon in a tray, and its menu");
    auto& desktop = desk_.desktop;
    const auto started = DemoStage::Clock::now();
    const TrayHostProcess tray(desk_.server, "trayer");
    const bool isShown = desktop.waitUntil([&] { return embeddedTrayIcon(desktop).has_value(); });
    stage_.report(isShown, "A tray started", "icon in it", DemoStage::Clock::now() - started);
    const auto icon = embeddedTrayIcon(desktop);
    if (!icon) {
        return;
    }
    const auto before = stage_.screen();
    const auto pressed = DemoStage::Clock::now();
    desk_.input.click(icon->x + icon->width / 2, icon->y + icon->height / 2);
    std::optional<TestDesktop::Place> menu;
    const bool isOpen = desktop.waitUntil([&] {
        const auto window = desktop.visiblePanel();
        menu = window ? desktop.placeOf(*window) : std::nullopt;
        // It holds the keyboard once it can be used.
        return menu && menu->width == menuWidth && !desktop.keyboardIsFree() && stage_.isPainted(*menu, before);
    });
    stage_.report(isOpen, "Icon clicked", "menu on the screen", DemoStage::Clock::now() - pressed);
    stage_.picture("menu");
    if (!isOpen) {
        return;
    }
    const int row = menu->y + menu->height - settingsAboveLowerEdge;
    openWindow(
        "Row \"Settings\" clicked", [&] { desk_.input.click(menu->x + menuWidth / 2, row); }, "Ferrowyn Settings");
    stage_.report(desktop.waitForPanel(false), "the menu is gone");
    stage_.picture("settings");
    closeWindow("Ferrowyn Settings");
}

void WindowsDemo::changedSetting() {
    DemoStage::step("A setting is changed: the grid, from now on");
    const auto place = openWindow(
        "ferrowyn --settings", [&] { ask("--settings"); }, "Ferrowyn Settings");
    if (!place) {
        return;
    }
    auto& desktop = desk_.desktop;
    // The chosen layout's button is filled, the others have another colour. Left of their texts:
    const auto listColour = [&] { return desktop.pixel(place->x + listX - 30, place->y + layoutsY); };
    const auto gridColour = [&] { return desktop.pixel(place->x + gridX - 30, place->y + layoutsY); };
    const auto asked = DemoStage::Clock::now();
    desk_.input.click(place->x + appearanceX, place->y + appearanceY);
    const bool isPaneShown = desktop.waitUntil([&] { return listColour() != gridColour(); });
    stage_.report(isPaneShown, "Appearance clicked", "its settings painted", DemoStage::Clock::now() - asked);
    const auto chosen = listColour();
    const auto clicked = DemoStage::Clock::now();
    desk_.input.click(place->x + gridX, place->y + layoutsY);
    const bool isStored = desk_.settings.waitFor("layout=\"grid\"");
    stage_.report(isStored, "Grid clicked", "settings file changed", DemoStage::Clock::now() - clicked);
    stage_.report(desktop.waitUntil([&] { return gridColour() == chosen; }),
                  "the button of the grid is the chosen one");
    stage_.picture("settings-grid");
    closeWindow("Ferrowyn Settings");
    stage_.open("Alt held, Tab");
    stage_.pictureOfPanel("panel-follows", [](const auto& panel) { return panel.width == gridWidth; });
    stage_.finish("Escape", key::escape, desk_.desktop.activeWindow());
}

void WindowsDemo::setupWindow() {
    DemoStage::step("The setup window");
    if (openWindow(
            "ferrowyn --setup", [&] { ask("--setup"); }, "Ferrowyn Setup")) {
        stage_.picture("setup");
        closeWindow("Ferrowyn Setup");
    }
}

std::optional<TestDesktop::Place> WindowsDemo::openWindow(const std::string& done, const std::function<void()>& act,
                                                          const std::string& title) {
    auto& desktop = desk_.desktop;
    const auto before = stage_.screen();
    const auto start = DemoStage::Clock::now();
    act();
    std::optional<TestDesktop::Place> place;
    const bool isActive = desktop.waitUntil([&] {
        const auto window = desktop.windowTitled(title);
        place = window && desktop.activeWindow() == *window ? desktop.placeOf(*window) : std::nullopt;
        return place && stage_.isPainted(*place, before);
    });
    stage_.report(isActive, done, "window active and painted", DemoStage::Clock::now() - start, title);
    if (!isActive) {
        stage_.explain(desktop.windowTitled(title) ? "it is open" : "it is not open");
        stage_.picture("not-opened");
    }
    return isActive ? place : std::nullopt;
}

void WindowsDemo::closeWindow(const std::string& title) {
    auto& desktop = desk_.desktop;
    const auto window = desktop.windowTitled(title);
    const auto place = window ? desktop.placeOf(*window) : std::nullopt;
    const auto before = stage_.screen();
    const auto start = DemoStage::Clock::now();
    desk_.input.tap(key::escape);
    // What it covered is painted again, or the next window could not be told from the picture of this one.
    const bool isGone =
        place && desktop.waitUntil([&] { return !desktop.windowTitled(title) && stage_.isPainted(*place, before); });
    stage_.report(isGone, "Escape", "window gone", DemoStage::Clock::now() - start, title);
}

void WindowsDemo::ask(const std::string& argument) {
    const auto answer = desk_.ask(argument);
    if (!answer.empty()) {
        stage_.report(false, argument + " was taken: " + answer);
    }
}

}  // namespace ferrowyn::x11test
