#include "tests/x11/demo/demo_stage.h"

#include <cstdio>
#include <filesystem>
#include <utility>

namespace ferrowyn::x11test {

DemoStage::DemoStage(const std::string& program, std::string pictures) : desk(program), pictures_(std::move(pictures)) {
    std::filesystem::create_directories(pictures_);
    for (const auto& old : std::filesystem::directory_iterator(pictures_)) {
        if (old.path().extension() == ".png") {
            std::filesystem::remove(old.path());
        }
    }
    picture("desktop");
}

void DemoStage::step(const char* title) {
    std::printf("\n%s\n", title);
}

void DemoStage::report(bool isRight, const std::string& what) {
    std::printf("  %s  %s\n", isRight ? "ok    " : "FAILED", what.c_str());
    (isRight ? passed_ : failed_) += 1;
    std::fflush(stdout);
}

void DemoStage::report(bool isRight, const std::string& done, const std::string& what, std::chrono::nanoseconds elapsed,
                       const std::string& detail) {
    char text[240];
    std::snprintf(text, sizeof text, "%-34s %s after %6.1f ms%s%s", done.c_str(), what.c_str(),
                  std::chrono::duration<double, std::milli>(elapsed).count(), detail.empty() ? "" : ": ",
                  detail.c_str());
    report(isRight, text);
}

void DemoStage::explain(const std::string& what) {
    std::printf("          %s%sactive instead: %s\n", what.c_str(), what.empty() ? "" : "; ",
                titleOf(desk.desktop.activeWindow()).c_str());
    std::fflush(stdout);
}

void DemoStage::picture(const std::string& name) {
    ++pictureCount_;
    const std::string number = (pictureCount_ < 10 ? "0" : "") + std::to_string(pictureCount_);
    desk.desktop.screenshot(pictures_ + "/" + number + "-" + name + ".png");
}

TestDesktop::Place DemoStage::whole() const {
    const auto* const screen = desk.desktop.screen();
    return {0, 0, screen->width_in_pixels, screen->height_in_pixels};
}

std::vector<std::uint32_t> DemoStage::screen() const {
    return desk.desktop.pixels(whole());
}

bool DemoStage::isPainted(const TestDesktop::Place& place, const std::vector<std::uint32_t>& before) const {
    const auto now = desk.desktop.pixels(place);
    std::size_t changed = 0;
    for (std::size_t index = 0; index < now.size(); ++index) {
        const auto width = static_cast<std::size_t>(place.width);
        const auto x = static_cast<std::size_t>(place.x) + index % width;
        const auto y = static_cast<std::size_t>(place.y) + index / width;
        changed += now[index] != before[y * static_cast<std::size_t>(whole().width) + x] ? 1 : 0;
    }
    return changed > now.size() / 2;
}

void DemoStage::pictureOfPanel(const std::string& name, const std::function<bool(const TestDesktop::Place&)>& isReady) {
    const auto& desktop = desk.desktop;
    const bool ready = desk.desktop.waitUntil([&] {
        const auto panel = desktop.visiblePanel();
        const auto place = panel ? desktop.placeOf(*panel) : std::nullopt;
        return place && isReady(*place);
    });
    report(ready, "the panel has the size of its content");
    picture(name);
}

void DemoStage::open(const std::string& keys, int times) {
    const auto& desktop = desk.desktop;
    const auto before = screen();
    desk.input.press(key::leftAlt);
    const auto pressed = Clock::now();
    desk.input.press(key::tab);
    // Painted means: the pixels in the middle of the search line are the panel's, not what was there before.
    const bool isPainted = desk.desktop.waitUntil([&] {
        const auto panel = desktop.visiblePanel();
        const auto place = panel ? desktop.placeOf(*panel) : std::nullopt;
        if (!place) {
            return false;
        }
        const int x = place->x + place->width / 2;
        const int y = place->y + 10;
        const auto old =
            before[static_cast<std::size_t>(y) * static_cast<std::size_t>(whole().width) + static_cast<std::size_t>(x)];
        return desktop.pixel(x, y) != (old & 0xFFFFFFU);
    });
    report(isPainted, keys, "panel painted", Clock::now() - pressed);
    desk.input.release(key::tab);
    for (int time = 1; time < times; ++time) {
        desk.input.tap(key::tab);
    }
}

void DemoStage::type(const std::string& shown, std::initializer_list<std::uint8_t> keys) {
    for (const auto code : keys) {
        desk.input.tap(code);
    }
    std::printf("          %s typed\n", shown.c_str());
}

std::string DemoStage::titleOf(xcb_window_t window) const {
    const auto title = desk.desktop.text(window, "_NET_WM_NAME");
    return title.empty() ? desk.desktop.text(window, "WM_NAME") : title;
}

void DemoStage::finish(const std::string& keys, const std::function<void()>& act, xcb_window_t expected) {
    const auto pressed = Clock::now();
    act();
    const bool isActive = desk.desktop.waitForActiveWindow(expected);
    const auto elapsed = Clock::now() - pressed;
    report(isActive, keys, "window active", elapsed, titleOf(expected));
    if (!isActive) {
        explain();
    }
    desk.input.release(key::leftAlt);
    const bool isGone = desk.desktop.waitForPanel(false);
    const bool leads = desk.program->waitForFirst(expected);
    if (!isGone || !leads) {
        report(false, isGone ? "the window leads the list" : "the panel is gone");
    }
}

void DemoStage::finish(const std::string& keys, std::uint8_t code, xcb_window_t expected) {
    finish(
        keys, [&] { desk.input.tap(code); }, expected);
}

int DemoStage::conclude() const {
    if (failed_ > 0) {
        // Where only this output is kept, it is all that there is to find out why from.
        std::printf("\nThe program said:\n%s", desk.program->process().output().c_str());
    }
    std::printf("\nPictures of every step are in %s\n", pictures_.c_str());
    std::printf("%d passed, %d failed\n", passed_, failed_);
    return failed_ == 0 ? 0 : 1;
}

}  // namespace ferrowyn::x11test
