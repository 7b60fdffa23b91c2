#include "tests/x11/demo/switching_demo.h"

namespace ferrowyn::x11test {

namespace {

/// Rows of 52 with 1 between, the search line, the insets and the hints.
int listHeight(int rows) {
    return rows * 52 + (rows - 1) + 16 + 56 + 34;
}

}  // namespace

void SwitchingDemo::run() {
    quickSwitch();
    heldSession();
    typedFilter();
    digitJump();
    gridLayout();
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
    stage_.pictureOfPanel("held", [](const auto& place) { return place.height == listHeight(6); });
    stage_.finish(
        "Alt released", [&] { desk_.input.release(key::leftAlt); }, desk_.files);
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
    stage_.finish("4", key::digit4, desk_.shell);
    stage_.report(desk_.desktop.waitUntil([&] { return desk_.desktop.currentDesktop() == 0; }), "the desktop followed");
}

void SwitchingDemo::gridLayout() {
    DemoStage::step("Ctrl+L, twice: the grid");
    stage_.open("Alt held, Tab");
    desk_.input.chord({key::leftControl, key::l});
    desk_.input.chord({key::leftControl, key::l});
    stage_.pictureOfPanel("grid", [](const auto& place) { return place.width == 760; });
    // Past the application in front, whose windows come first: both terminals.
    desk_.input.tap(key::right);
    desk_.input.tap(key::right);
    stage_.finish("Right, Right, Return", key::enter, desk_.files);
    stage_.open("Alt held, Tab");
    desk_.input.chord({key::leftControl, key::l});
    stage_.pictureOfPanel("list-again", [](const auto& place) { return place.width == 640; });
    stage_.finish("Escape", key::escape, desk_.files);
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

}  // namespace ferrowyn::x11test
