// Shows the switcher at work on a private desktop: presses real keys, prints what happened when, keeps a picture of
// each step, and fails when a step did not do what it should.

#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>

#include "tests/x11/demo/demo_desktop.h"

namespace ferrowyn::x11test {
namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

class Demo {
public:
    Demo(const std::string& program, std::string pictures) : desk_(program), pictures_(std::move(pictures)) {
        std::filesystem::create_directories(pictures_);
        for (const auto& old : std::filesystem::directory_iterator(pictures_)) {
            if (old.path().extension() == ".png") {
                std::filesystem::remove(old.path());
            }
        }
        picture("desktop");
    }

    int run() {
        quickSwitch();
        heldSession();
        typedFilter();
        digitJump();
        gridLayout();
        pin();
        restoreMinimised();
        std::printf("\nPictures of every step are in %s\n", pictures_.c_str());
        std::printf("%d passed, %d failed\n", passed_, failed_);
        return failed_ == 0 ? 0 : 1;
    }

private:
    void step(const char* title) { std::printf("\n%s\n", title); }

    void report(bool isRight, const std::string& what) {
        std::printf("  %s  %s\n", isRight ? "ok    " : "FAILED", what.c_str());
        (isRight ? passed_ : failed_) += 1;
        std::fflush(stdout);
    }

    void picture(const std::string& name) {
        ++pictureCount_;
        const std::string number = (pictureCount_ < 10 ? "0" : "") + std::to_string(pictureCount_);
        desk_.desktop.screenshot(pictures_ + "/" + number + "-" + name + ".png");
    }

    /// Holds Alt and taps Tab `times`; the first press is the one that is timed.
    void open(const std::string& keys, int times = 1) {
        const auto& desktop = desk_.desktop;
        const TestDesktop::Place whole{0, 0, desktop.screen()->width_in_pixels, desktop.screen()->height_in_pixels};
        const auto before = desktop.pixels(whole);
        desk_.input.press(key::leftAlt);
        const auto pressed = Clock::now();
        desk_.input.press(key::tab);
        // Painted means: the pixels in the middle of the search line are the panel's, not what was there before.
        const bool isPainted = desk_.desktop.waitUntil([&] {
            const auto panel = desktop.visiblePanel();
            const auto place = panel ? desktop.placeOf(*panel) : std::nullopt;
            if (!place) {
                return false;
            }
            const int x = place->x + place->width / 2;
            const int y = place->y + 10;
            const auto old = before[static_cast<std::size_t>(y) * static_cast<std::size_t>(whole.width) +
                                    static_cast<std::size_t>(x)];
            return desktop.pixel(x, y) != (old & 0xFFFFFFU);
        });
        const double elapsed = millisecondsSince(pressed);
        desk_.input.release(key::tab);
        for (int time = 1; time < times; ++time) {
            desk_.input.tap(key::tab);
        }
        char text[160];
        std::snprintf(text, sizeof text, "%-34s panel painted after %6.1f ms", keys.c_str(), elapsed);
        report(isPainted, text);
    }

    void type(const std::string& shown, std::initializer_list<std::uint8_t> keys) {
        for (const auto code : keys) {
            desk_.input.tap(code);
        }
        std::printf("          %s typed\n", shown.c_str());
    }

    [[nodiscard]] std::string titleOf(xcb_window_t window) const {
        const auto title = desk_.desktop.text(window, "_NET_WM_NAME");
        return title.empty() ? desk_.desktop.text(window, "WM_NAME") : title;
    }

    /// Does the last thing of a switch and times until the window is active.
    void finish(const std::string& keys, const std::function<void()>& act, xcb_window_t expected) {
        const auto pressed = Clock::now();
        act();
        const bool isActive = desk_.desktop.waitForActiveWindow(expected);
        char text[200];
        std::snprintf(text, sizeof text, "%-34s window active after %6.1f ms: %s", keys.c_str(),
                      millisecondsSince(pressed), titleOf(expected).c_str());
        report(isActive, text);
        desk_.input.release(key::leftAlt);
        const bool isGone = desk_.desktop.waitForPanel(false);
        const bool leads = desk_.program->waitForFirst(expected);
        if (!isGone || !leads) {
            report(false, isGone ? "the window leads the list" : "the panel is gone");
        }
    }

    void finish(const std::string& keys, std::uint8_t code, xcb_window_t expected) {
        finish(
            keys, [&] { desk_.input.tap(code); }, expected);
    }

    /// The picture is taken when the panel shows this many rows' height, so that it is the finished frame.
    void pictureOfPanel(const std::string& name, const std::function<bool(const TestDesktop::Place&)>& isReady) {
        const auto& desktop = desk_.desktop;
        const bool ready = desk_.desktop.waitUntil([&] {
            const auto panel = desktop.visiblePanel();
            const auto place = panel ? desktop.placeOf(*panel) : std::nullopt;
            return place && isReady(*place);
        });
        report(ready, "the panel has the size of its content");
        picture(name);
    }

    void quickSwitch() {
        step("A quick Alt+Tab toggles to the window used before");
        finish(
            "Alt+Tab pressed and released",
            [&] {
                desk_.input.chord({key::leftAlt, key::tab});
            },
            desk_.build);
        picture("after-quick-switch");
    }

    void heldSession() {
        step("Alt held, Tab three times, released");
        open("Alt held, Tab, Tab, Tab", 3);
        pictureOfPanel("held", [](const auto& place) { return place.height == listHeight(6); });
        finish(
            "Alt released", [&] { desk_.input.release(key::leftAlt); }, desk_.files);
    }

    void typedFilter() {
        step("Typing filters; the window on the other desktop is found");
        open("Alt held, Tab");
        type("notes f", {key::n, key::o, key::t, key::e, key::s, key::space, key::f});
        pictureOfPanel("filtered", [](const auto& place) { return place.height == listHeight(1); });
        finish("Return", key::enter, desk_.notes);
        report(desk_.desktop.waitUntil([&] { return desk_.desktop.currentDesktop() == 1; }), "the desktop followed");
    }

    void digitJump() {
        step("A digit jumps straight to its row, back on the first desktop");
        open("Alt held, Tab");
        pictureOfPanel("digits", [](const auto& place) { return place.height == listHeight(6); });
        finish("4", key::digit4, desk_.shell);
        report(desk_.desktop.waitUntil([&] { return desk_.desktop.currentDesktop() == 0; }), "the desktop followed");
    }

    void gridLayout() {
        step("Ctrl+L, twice: the grid");
        open("Alt held, Tab");
        desk_.input.chord({key::leftControl, key::l});
        desk_.input.chord({key::leftControl, key::l});
        pictureOfPanel("grid", [](const auto& place) { return place.width == 760; });
        desk_.input.tap(key::right);
        finish("Right, Return", key::enter, desk_.files);
        open("Alt held, Tab");
        desk_.input.chord({key::leftControl, key::l});
        pictureOfPanel("list-again", [](const auto& place) { return place.width == 640; });
        finish("Escape", key::escape, desk_.files);
    }

    void pin() {
        step("Ctrl+D pins the editor: it leads every list from now on");
        open("Alt held, Tab");
        type("mousepad", {key::m, key::o, key::u, key::s, key::e, key::p, key::a, key::d});
        desk_.input.chord({key::leftControl, key::d});
        pictureOfPanel("pinned", [](const auto& place) { return place.height == listHeight(1); });
        finish("Return", key::enter, desk_.editor);
        desk_.desktop.activate(desk_.shell);
        report(desk_.desktop.waitForActiveWindow(desk_.shell) && desk_.program->waitForFirst(desk_.shell),
               "the shell was used in between");
        open("Alt held, Tab");
        pictureOfPanel("favourites-first", [](const auto& place) { return place.height == listHeight(6); });
        finish("1", key::digit1, desk_.editor);
    }

    void restoreMinimised() {
        step("A minimised window comes back");
        open("Alt held, Tab");
        type("calc", {key::c, key::a, key::l, key::c});
        pictureOfPanel("minimised", [](const auto& place) { return place.height == listHeight(1); });
        finish("Return", key::enter, desk_.calculator);
        report(desk_.desktop.waitUntil([&] { return desk_.desktop.isViewable(desk_.calculator); }),
               "it is on the screen");
        picture("restored");
    }

    /// Rows of 52 with 1 between, the search line, the insets and the hints.
    static int listHeight(int rows) { return rows * 52 + (rows - 1) + 16 + 56 + 34; }

    DemoDesktop desk_;
    std::string pictures_;
    int pictureCount_ = 0;
    int passed_ = 0;
    int failed_ = 0;
};

}  // namespace
}  // namespace ferrowyn::x11test

int main(int argc, char** argv) {
    std::string program;
    std::string pictures;
    for (int index = 1; index + 1 < argc; index += 2) {
        if (std::strcmp(argv[index], "--program") == 0) {
            program = argv[index + 1];
        } else if (std::strcmp(argv[index], "--pictures") == 0) {
            pictures = argv[index + 1];
        }
    }
    if (program.empty() || pictures.empty()) {
        std::fprintf(stderr, "usage: ferrowyn_demo --program PATH --pictures FOLDER\n");
        return 2;
    }
    try {
        return ferrowyn::x11test::Demo(program, pictures).run();
    } catch (const std::exception& error) {
        std::printf("  FAILED  %s\n0 passed, 1 failed\n", error.what());
        return 1;
    }
}
