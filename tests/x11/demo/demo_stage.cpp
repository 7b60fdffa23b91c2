#include "tests/x11/demo/demo_stage.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace ferrowyn::x11test {
namespace {

void require(bool holds, const std::string& what) {
    if (!holds) {
        throw std::runtime_error("waited for " + what);
    }
}

}  // namespace

DemoDesktop::DemoDesktop(const std::string& programPath) : DesktopSession("openbox"), programPath_(programPath) {
    paintBackground();
    server.home().write("Documents/Minutes.txt", "Minutes\n=======\n\nThe switcher shows every window.\n");
    server.home().write("Documents/Report.txt", "Report\n");
    arrange();
    program = std::make_unique<FerrowynProgram>(programPath, server);
    require(program->waitUntilActive(), "the switcher to be active; it said: " + program->process().output());
    require(program->waitForList(6, desktop.activeWindow()),
            "six listed windows; it said: " + program->process().output());
    for (const auto window : {files, editor, build, shell}) {
        desktop.activate(window);
        require(desktop.waitForActiveWindow(window), "a window to be active");
        require(program->waitForFirst(window), "that window to lead the list");
    }
}

void DemoDesktop::paintBackground() {
    auto* const connection = desktop.connection();
    const int width = desktop.screen()->width_in_pixels;
    const int height = desktop.screen()->height_in_pixels;
    const xcb_pixmap_t picture = xcb_generate_id(connection);
    xcb_create_pixmap(connection, desktop.screen()->root_depth, picture, desktop.root(),
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
    const xcb_gcontext_t context = xcb_generate_id(connection);
    xcb_create_gc(connection, context, picture, 0, nullptr);
    for (int row = 0; row < height; ++row) {
        const auto share = static_cast<unsigned>(row * 255 / height);
        const std::uint32_t colour = (0x24U + share * 0x38U / 255U) << 16U | (0x3CU + share * 0x02U / 255U) << 8U |
                                     (0x5AU + share * 0x10U / 255U);
        xcb_change_gc(connection, context, XCB_GC_FOREGROUND, &colour);
        const xcb_rectangle_t line{0, static_cast<std::int16_t>(row), static_cast<std::uint16_t>(width), 1};
        xcb_poly_fill_rectangle(connection, picture, context, 1, &line);
    }
    xcb_change_window_attributes(connection, desktop.root(), XCB_CW_BACK_PIXMAP, &picture);
    xcb_clear_area(connection, 0, desktop.root(), 0, 0, 0, 0);
    xcb_free_gc(connection, context);
    xcb_free_pixmap(connection, picture);
    xcb_flush(connection);
}

xcb_window_t DemoDesktop::launch(const std::vector<std::string>& command, const TestDesktop::Place& place) {
    const auto before = desktop.clientList();
    applications_.push_back(std::make_unique<ChildProcess>(ChildProcess::Options{
        .command = command, .environment = server.clientEnvironment(), .inheritedDescriptor = {}}));
    xcb_window_t opened = 0;
    require(desktop.waitUntil(
                [&] {
                    for (const auto window : desktop.clientList()) {
                        if (std::find(before.begin(), before.end(), window) == before.end()) {
                            opened = window;
                        }
                    }
                    return opened != 0;
                },
                milliseconds{30000}),
            "the window of " + command.front() + "; it said: " + applications_.back()->output());
    desktop.activate(opened);
    require(desktop.waitForActiveWindow(opened), command.front() + " to be active");
    const std::uint32_t values[] = {static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y),
                                    static_cast<std::uint32_t>(place.width), static_cast<std::uint32_t>(place.height)};
    xcb_configure_window(desktop.connection(), opened,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values);
    xcb_flush(desktop.connection());
    return opened;
}

std::string DemoDesktop::ask(const std::string& argument) const {
    ChildProcess process = startClient({programPath_, argument});
    const auto status = process.waitForExit();
    if (!status) {
        return "it does not end";
    }
    return *status == 0 ? process.output() : "it ended with " + std::to_string(*status) + ": " + process.output();
}

void DemoDesktop::arrange() {
    const std::string documents = server.home().path() + "/Documents";
    desktop.setDesktopCount(2);
    // So far to the right that the panel covers its address, which is a folder of this machine.
    files = launch({"pcmanfm", "--no-desktop", documents}, {100, 80, 560, 380});
    notes = launch({"xedit", "-title", "Notes for Berlin.txt"}, {860, 60, 380, 260});
    calculator = launch({"xcalc", "-title", "Calculator"}, {980, 320, 220, 300});
    // The title names the file without its folder, also one of this machine.
    server.home().write(".config/glib-2.0/settings/keyfile",
                        "[org/xfce/mousepad/preferences/window]\npath-in-title=false\n");
    editor = launch({"env", "GSETTINGS_BACKEND=keyfile", "mousepad", "--disable-server", documents + "/Minutes.txt"},
                    {420, 60, 520, 360});
    // A made-up prompt: a shell's would show this machine's folders in the pictures.
    const std::vector<std::string> prompt{"-e", "sh", "-c", "printf '~/src/ferrowyn $ '; exec cat"};
    const auto terminal = [&](const std::string& title, const TestDesktop::Place& place) {
        std::vector<std::string> command{"xterm", "-fa", "DejaVu Sans Mono", "-fs", "10", "-T", title};
        command.insert(command.end(), prompt.begin(), prompt.end());
        return launch(command, place);
    };
    build = terminal("build: cmake --build --preset release", {80, 430, 520, 300});
    shell = terminal("ssh build@larkmoor: ~/src/ferrowyn", {640, 440, 560, 300});
    desktop.moveToDesktop(notes, 1);
    require(desktop.waitUntil(
                [&] { return desktop.cardinals(notes, "_NET_WM_DESKTOP") == std::vector<std::uint32_t>{1}; }, patience),
            "the notes to be on the second desktop");
    desktop.watchProperties(calculator);
    desktop.iconify(calculator);
    require(desktop.waitUntil([&] { return desktop.hasState(calculator, "_NET_WM_STATE_HIDDEN"); }),
            "the calculator to be minimised");
}

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
