#include "tests/x11/harness/window_manager_process.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {

namespace {

constexpr const char* i3Configuration =
    "font pango:monospace 8\n"
    "workspace_layout stacking\n"
    "focus_follows_mouse no\n"
    "bindsym Mod1+Tab focus down\n"
    "bindsym Mod1+Shift+Tab focus up\n";

std::vector<std::string> commandFor(const std::string& name, const PrivateXServer& server, bool replacing) {
    // The managers of the large desktops want a session bus; each gets one of its own that ends with it.
    const std::vector<std::string> onBus{"dbus-run-session", "--"};
    std::vector<std::string> command;
    if (name == "openbox") {
        command = {"openbox", "--sm-disable"};
    } else if (name == "xfwm4") {
        command = {"dbus-run-session", "--", "xfwm4", "--compositor=off"};
    } else if (name == "icewm") {
        command = {"icewm"};
    } else if (name == "metacity") {
        command = {"dbus-run-session", "--", "metacity", "--sm-disable", "--no-composite"};
    } else if (name == "i3") {
        server.home().write("i3.conf", i3Configuration);
        command = {"i3", "-c", server.home().path() + "/i3.conf"};
    } else if (name == "kwin_x11") {
        command = {"dbus-run-session", "--", "kwin_x11"};
    } else if (name == "mutter") {
        command = {"dbus-run-session", "--", "mutter", "--x11", "--sm-disable"};
    } else if (name == "dwm") {
        // It has no way to be told to take another manager's place.
        return {"dwm"};
    } else if (name == "wmaker") {
        command = {"wmaker", "--no-dock", "--no-clip", "--no-drawer"};
    } else {
        throw std::runtime_error("no such window manager: " + name);
    }
    if (replacing) {
        command.emplace_back("--replace");
    }
    return command;
}

/// Managers announce themselves before their event loop runs, do not focus a window that they find at start, and
/// openbox forgets one that is mapped while it starts: only a window that came and went shows that the next one will be
/// treated like any other.
bool managesAProbe(TestDesktop& desktop, const PrivateXServer& server) {
    const Deadline deadline(patience);
    while (!deadline.hasPassed()) {
        std::optional<TestWindow> probe(std::in_place, server.display(), TestWindow::Options{.title = "Probe"});
        const auto isListed = [&desktop, id = probe->id()] {
            const auto clients = desktop.clientList();
            return std::find(clients.begin(), clients.end(), id) != clients.end();
        };
        const bool wasListed = desktop.waitUntil(isListed, milliseconds{300});
        probe.reset();
        if (wasListed) {
            return desktop.waitUntil([&] { return !isListed(); });
        }
    }
    return false;
}

/// Window Maker can leave the server grabbed for ever when a window is mapped while it starts, so no probe may be until
/// its event loop runs. It leaves one desktop, as it begins.
bool carriesOutRequests(TestDesktop& desktop) {
    const auto changesTo = [&](std::uint32_t count) {
        desktop.setDesktopCount(count);
        return desktop.waitUntil([&] {
            return desktop.cardinals(desktop.root(), "_NET_NUMBER_OF_DESKTOPS") == std::vector<std::uint32_t>{count};
        });
    };
    return changesTo(2) && changesTo(1);
}

}  // namespace

WindowManagerProcess::WindowManagerProcess(const PrivateXServer& server, const std::string& name, bool replacing)
    : name_(name) {
    TestDesktop desktop(server.display());
    const auto before = desktop.windowManagerCheckWindow();
    ChildProcess::Options options;
    options.command = commandFor(name, server, replacing);
    options.environment = server.clientEnvironment();
    options.environment["KWIN_COMPOSE"] = "N";
    process_ = std::make_unique<ChildProcess>(options);
    const bool isReady = desktop.waitUntil(
        [&] {
            const auto now = desktop.windowManagerCheckWindow();
            return now && now != before;
        },
        milliseconds{20000});
    const bool isRunning = isReady && (name != "wmaker" || carriesOutRequests(desktop));
    if (!isRunning || !managesAProbe(desktop, server)) {
        throw std::runtime_error("waited for " + name + " to manage windows; it said: " + process_->output());
    }
}

}  // namespace ferrowyn::x11test
