#include "tests/x11/windows/windows_fixture.h"

#include <algorithm>
#include <csignal>
#include <ctime>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ferrowyn::x11test {

namespace {

constexpr std::size_t windowCount = 5;
constexpr const char* productName = "Ferrowyn";

}  // namespace

WindowsFixture::WindowsFixture() : browser(server, "Browser", {"News", "Weather", "Maps"}) {
    const std::string folder = ".local/share/applications/";
    server.home().write(folder + "org.example.writer.desktop",
                        "[Desktop Entry]\nType=Application\nName=Writer\nExec=writer\nStartupWMClass=TestApp\n");
    server.home().write(folder + "org.example.browser.desktop",
                        "[Desktop Entry]\nType=Application\nName=Browser\nExec=browser\nStartupWMClass=Browser\n");
    startBus();
    programOptions.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
    // Nothing listens there: looking for updates fails at once, and no test asks the network.
    programOptions.environment["https_proxy"] = "http://127.0.0.1:9";
    programOptions.environment["QT_QPA_PLATFORM"] = "xcb";
    reader = std::make_unique<AccessibilityClient>(*bus);
    EXPECT_TRUE(desktop.waitUntil([&] { return desktop.clientList().size() == windowCount; }));
}

void WindowsFixture::TearDown() {
    input.releaseAll();
    if (program) {
        end();
    }
}

void WindowsFixture::start() {
    desktop.activate(windows.back()->id());
    ASSERT_TRUE(desktop.waitForActiveWindow(windows.back()->id()));
    SwitchingDesk::startProgram(windowCount);
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(program->process().waitForOutput("Ferrowyn is running"));
}

void WindowsFixture::end() {
    reader->settle();
    program->process().signal(SIGTERM);
    EXPECT_EQ(program->process().waitForExit(), 0) << program->process().output();
    EXPECT_EQ(program->sanitizerReport(), "");
    program.reset();
}

void WindowsFixture::restart() {
    end();
    start();
}

void WindowsFixture::open(const std::string& option, const std::string& title) {
    ASSERT_EQ(ask({option}).status, 0);
    waitUntilUsable(title);
}

void WindowsFixture::waitUntilUsable(const std::string& title) {
    const auto window = waitForWindow(title);
    ASSERT_TRUE(window) << "waited for " << title;
    ASSERT_TRUE(desktop.waitForActiveWindow(*window)) << "waited for " << title << " to be active";
    // The window manager has moved it into its frame; until the program knows, it tells of places where nothing is.
    ASSERT_TRUE(reader->waitUntil([&] { return shown(title).place == desktop.placeOf(*window); }))
        << "waited for " << title << " to know where it is";
}

void WindowsFixture::startTray() {
    tray = std::make_unique<TrayHostProcess>(server, *bus, "trayer");
}

AccessibleNode WindowsFixture::shown(const std::string& title) const {
    return reader->window(title).value_or(AccessibleNode{});
}

AccessibleNode WindowsFixture::control(const std::string& title, const std::string& role,
                                       const std::string& name) const {
    AccessibleNode control;
    const bool isShown = reader->waitUntil([&] {
        const auto window = shown(title);
        const auto* const found = window.find(role, name);
        control = found == nullptr ? AccessibleNode() : *found;
        return found != nullptr;
    });
    if (!isShown) {
        throw std::runtime_error("waited for the " + role + " " + name + " in " + title);
    }
    return control;
}

bool WindowsFixture::shows(const std::string& title, const std::string& role, const std::string& name) const {
    return shown(title).find(role, name) != nullptr;
}

void WindowsFixture::expectLines(const std::string& title, const Lines& lines) {
    static_cast<void>(reader->waitUntil([&] { return shown(title).lines() == lines; }));
    EXPECT_EQ(shown(title).lines(), lines) << "waited for " << title;
}

void WindowsFixture::expectChecked(const std::string& title, const std::string& role, const std::string& name,
                                   bool isChecked) {
    EXPECT_TRUE(reader->waitUntil([&] {
        const auto window = shown(title);
        const auto* const control = window.find(role, name);
        return control != nullptr && control->is(State::checked) == isChecked;
    })) << "waited for "
        << name << (isChecked ? " to be checked" : " not to be checked") << " in\n"
        << shown(title);
}

void WindowsFixture::expectLabel(const std::string& title, const std::string& text) {
    EXPECT_TRUE(reader->waitUntil([&] { return shown(title).find("label", text) != nullptr; }))
        << "waited for the label " << text << " in\n"
        << shown(title);
}

void WindowsFixture::click(const std::string& title, const std::string& role, const std::string& name,
                           int horizontally) {
    std::optional<TestDesktop::Place> place;
    ASSERT_TRUE(reader->waitUntil([&] {
        const auto before = place;
        const auto window = shown(title);
        const auto* const control = window.find(role, name);
        place = control != nullptr && control->is(State::enabled) ? std::optional(control->place) : std::nullopt;
        // Not while the window is still being laid out.
        return place && place == before;
    })) << "waited for the "
        << role << ' ' << name << " in\n"
        << shown(title);
    const int fromLeft = horizontally < 0 ? place->width + horizontally : horizontally;
    input.click(place->x + (horizontally == 0 ? place->width / 2 : fromLeft), place->y + place->height / 2);
}

void WindowsFixture::choosePane(const std::string& name) {
    click(settingsTitle, "list item", name);
    // Its heading.
    expectLabel(settingsTitle, name);
}

void WindowsFixture::expectFocus(const std::string& role, const std::string& name) {
    const auto isFocused = [&] {
        const auto focused = reader->focused();
        return focused && focused->role == role && focused->name == name;
    };
    const auto line = [&] {
        const auto focused = reader->focused();
        return focused ? focused->line() : "nothing";
    };
    EXPECT_TRUE(reader->waitUntil(isFocused)) << "waited for the focus on " << name << "; it is on " << line();
}

void WindowsFixture::expectSetting(const std::string& section, const std::string& key, const std::string& value) {
    static_cast<void>(reader->waitUntil([&] { return setting(section, key) == value; }));
    EXPECT_EQ(setting(section, key), value) << "of " << section << '.' << key;
}

std::string WindowsFixture::setting(const std::string& section, const std::string& key) const {
    std::ifstream file(server.home().path() + "/.config/Ferrowyn/Ferrowyn.ini");
    bool isInSection = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('[')) {
            isInSection = line == "[" + section + "]";
        } else if (isInSection && line.starts_with(key + "=")) {
            return line.substr(key.size() + 1);
        }
    }
    return "(not set)";
}

std::optional<AccessibleNode> WindowsFixture::panel() const {
    auto panel = reader->window([](const AccessibleNode& node) { return node.name == productName; });
    return panel && panel->find("list", "Windows") != nullptr ? panel : std::nullopt;
}

void WindowsFixture::openSwitcher(std::uint8_t modifier) {
    // A menu or a popup that is gone from the screen may still hold the keyboard for a moment.
    ASSERT_TRUE(desktop.waitForUntouchedKeyboard()) << "waited for the keyboard to be let go";
    input.press(modifier);
    input.tap(key::tab);
    ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel; it said: " << program->process().output();
}

void WindowsFixture::leaveSwitcher(std::uint8_t modifier) {
    input.tap(key::escape);
    input.release(modifier);
    ASSERT_TRUE(desktop.waitForPanel(false)) << "waited for the panel to go";
    ASSERT_TRUE(desktop.waitForUntouchedKeyboard()) << "waited for the keyboard to be let go";
}

void WindowsFixture::expectSwitcher(const Lines& lines, int width, std::uint8_t modifier) {
    constexpr milliseconds forOneSession{1500};
    const auto read = [&] {
        const auto now = panel();
        return now ? now->find("list", "Windows")->lines() : Lines();
    };
    // The list is the one of the moment when the switcher opens: what the window manager did just before may have come
    // too late for it.
    const Deadline deadline(patience);
    Lines last;
    bool isAsWide = false;
    while (!(last == lines && isAsWide) && !deadline.hasPassed()) {
        openSwitcher(modifier);
        isAsWide = reader->waitUntil([&] { return read() == lines && isSwitcherAsWide(width); }, forOneSession);
        last = read();
        leaveSwitcher(modifier);
    }
    EXPECT_EQ(last, lines);
    EXPECT_TRUE(isAsWide) << "waited for a panel " << width << " wide";
}

bool WindowsFixture::isSwitcherAsWide(int width) const {
    const auto told = panel();
    const auto window = desktop.visiblePanel();
    return told && window && told->place.width == width && desktop.placeOf(*window) == told->place;
}

int WindowsFixture::switcherHeight(const std::function<bool(int)>& isIt) {
    openSwitcher(key::leftAlt);
    int height = 0;
    EXPECT_TRUE(reader->waitUntil([&] {
        const auto window = desktop.visiblePanel();
        const auto place = window ? desktop.placeOf(*window) : std::nullopt;
        height = place ? place->height : 0;
        return isIt(height);
    })) << "waited for the panel to be as high; it is "
        << height;
    leaveSwitcher(key::leftAlt);
    return height;
}

std::optional<AccessibleNode> WindowsFixture::menu() const {
    return reader->window([](const AccessibleNode& node) { return node.role == "popup menu"; });
}

void WindowsFixture::clickTrayIcon() {
    // The tray makes room for it first.
    constexpr int looks = 5;
    std::optional<TestDesktop::Place> place;
    int timesSeen = 0;
    ASSERT_TRUE(reader->waitUntil([&] {
        const auto before = place;
        place = embeddedTrayIcon(desktop);
        timesSeen = place && place == before ? timesSeen + 1 : 0;
        return timesSeen == looks;
    })) << "waited for the icon in the tray";
    input.click(place->x + place->width / 2, place->y + place->height / 2);
}

void WindowsFixture::openMenu() {
    clickTrayIcon();
    ASSERT_TRUE(reader->waitUntil([&] { return menu() && !desktop.keyboardIsFree(); })) << "waited for the menu";
}

void WindowsFixture::expectMenu(const Lines& lines) {
    const auto read = [&] {
        const auto now = menu();
        return now ? now->lines() : Lines();
    };
    static_cast<void>(reader->waitUntil([&] { return read() == lines; }));
    EXPECT_EQ(read(), lines);
}

AccessibleNode WindowsFixture::menuRow(const std::string& name) const {
    const auto now = menu();
    const auto* const found = now ? now->find("menu item", name) : nullptr;
    if (found == nullptr) {
        throw std::runtime_error("no row " + name + " in the menu");
    }
    return *found;
}

void WindowsFixture::waitUntilMenuIsGone() {
    ASSERT_TRUE(reader->waitUntil([&] { return !menu() && desktop.keyboardIsFree(); })) << "waited for the menu to go";
}

void WindowsFixture::closeMenuBy(std::uint8_t keyCode) {
    input.press(keyCode);
    waitUntilMenuIsGone();
    input.release(keyCode);
}

void WindowsFixture::chooseFromMenu(const std::string& row) {
    const auto place = menuRow(row).place;
    input.click(place.x + place.width / 2, place.y + place.height / 2);
    waitUntilMenuIsGone();
}

std::string WindowsFixture::thisYear() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    return std::to_string(1900 + local.tm_year);
}

}  // namespace ferrowyn::x11test
