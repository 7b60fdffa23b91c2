#include "tests/x11/harness/desktop_processes.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {
namespace {

/// The server writes its display number and a newline when it accepts connections.
std::string readDisplayNumber(int descriptor) {
    const Deadline deadline(patience);
    std::string text;
    while (text.empty() || text.back() != '\n') {
        pollfd waiting{descriptor, POLLIN, 0};
        std::array<char, 16> buffer{};
        if (poll(&waiting, 1, deadline.remainingMilliseconds()) <= 0) {
            throw std::runtime_error("waited for the X server to say its display number");
        }
        const auto length = read(descriptor, buffer.data(), buffer.size());
        if (length <= 0) {
            throw std::runtime_error("the X server ended before it was ready");
        }
        text.append(buffer.data(), static_cast<std::size_t>(length));
    }
    text.pop_back();
    return text;
}

std::vector<std::string> xvfbCommand(const std::vector<std::string>& screens,
                                     const std::vector<std::string>& extraArguments) {
    std::vector<std::string> command{"Xvfb"};
    for (std::size_t screen = 0; screen < screens.size(); ++screen) {
        command.insert(command.end(), {"-screen", std::to_string(screen), screens[screen]});
    }
    if (screens.size() > 1) {
        command.emplace_back("+xinerama");
    }
    command.insert(command.end(), extraArguments.begin(), extraArguments.end());
    return command;
}

}  // namespace

PrivateXServer::PrivateXServer(const std::vector<std::string>& screens, const std::vector<std::string>& extraArguments)
    : PrivateXServer(xvfbCommand(screens, extraArguments), std::map<std::string, std::string>()) {}

PrivateXServer PrivateXServer::nestedIn(const PrivateXServer& host) {
    return {{"Xephyr", "-screen", "1024x700"}, host.clientEnvironment()};
}

PrivateXServer::PrivateXServer(std::vector<std::string> command,
                               const std::map<std::string, std::string>& environment) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe for the X server");
    }
    command.insert(command.end(), {"-displayfd", std::to_string(ends[1]), "-nolisten", "tcp", "-noreset", "-ac"});
    process_ = std::make_unique<ChildProcess>(ChildProcess::Options{
        .command = std::move(command), .environment = environment, .inheritedDescriptor = ends[1]});
    close(ends[1]);
    display_ = ":" + readDisplayNumber(ends[0]);
    close(ends[0]);
}

std::map<std::string, std::string> PrivateXServer::clientEnvironment() const {
    const std::string& home = home_.path();
    return {
        {"DISPLAY", display_},
        {"HOME", home},
        {"XDG_CONFIG_HOME", home + "/.config"},
        {"XDG_CACHE_HOME", home + "/.cache"},
        {"XDG_DATA_HOME", home + "/.local/share"},
        {"XDG_RUNTIME_DIR", home},
        {"XDG_SESSION_TYPE", "x11"},
        {"WAYLAND_DISPLAY", ""},
        {"XAUTHORITY", ""},
        // With an empty address some libraries start a bus that nothing ends.
        {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
        {"XDG_CURRENT_DESKTOP", ""},
        {"DESKTOP_SESSION", ""},
        {"GSETTINGS_BACKEND", "memory"},
        {"NO_AT_BRIDGE", "1"},
        {"LANG", "C.UTF-8"},
        {"LC_ALL", "C.UTF-8"},
    };
}

PrivateBus::PrivateBus(const PrivateXServer& server) {
    options_.environment = server.clientEnvironment();
    start({});
}

void PrivateBus::restart() {
    kill();
    start({"--address=" + address_});
}

void PrivateBus::start(const std::vector<std::string>& arguments) {
    auto options = options_;
    options.command = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address"};
    options.command.insert(options.command.end(), arguments.begin(), arguments.end());
    process_ = std::make_unique<ChildProcess>(options);
    if (!process_->waitForOutput(",guid=")) {
        throw std::runtime_error("waited for dbus-daemon to say its address");
    }
    // Without the "guid" part, which is another one after a restart. The address of a user's bus has none either.
    const std::string said = process_->output();
    const auto begin = said.find("unix:");
    address_ = said.substr(begin, said.find(",guid=", begin) - begin);
}

namespace {

constexpr const char* i3Configuration =
    "font pango:monospace 8\n"
    "workspace_layout stacking\n"
    "focus_follows_mouse no\n"
    "bindsym Mod1+Tab focus down\n"
    "bindsym Mod1+Shift+Tab focus up\n";

std::vector<std::string> commandFor(const std::string& name, const PrivateXServer& server, bool replacing) {
    // The managers of the large desktops need a session bus: dbus-run-session starts one that ends with the manager.
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
        // dwm cannot replace another manager.
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

/// Opens and closes windows until the manager has listed one. Managers announce themselves before their event loop runs
/// and do not focus windows that exist at their start, and openbox loses a window that is mapped while it starts. After
/// one window was listed and removed, the next one is treated as usual.
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

/// Waits until the manager's event loop runs, without opening a window: Window Maker may never ungrab the server when a
/// window is mapped while it starts. The number of desktops is 1 afterwards, as at the start.
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

namespace {

/// One panel as wide as the screen, which contains only the tray.
constexpr const char* panelConfiguration = R"(<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="dark-mode" type="bool" value="true"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="28"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
    </property>
  </property>
</channel>
)";

constexpr const char* lxqtConfiguration = R"([General]
panels=panel1

[panel1]
alignment=-1
desktop=0
iconSize=22
lineCount=1
panelSize=32
plugins=statusnotifier
position=Top
width=100
width-percent=true

[statusnotifier]
type=statusnotifier
)";

std::vector<std::string> commandFor(const std::string& name, const PrivateXServer& server) {
    if (name == "xfce4-panel") {
        server.home().write(".config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", panelConfiguration);
        return {"xfce4-panel", "--disable-wm-check", "--sm-client-disable"};
    }
    if (name == "lxqt-panel") {
        server.home().write("lxqt-panel.conf", lxqtConfiguration);
        return {"lxqt-panel", "--configfile", server.home().path() + "/lxqt-panel.conf"};
    }
    if (name == "trayer") {
        return {"trayer",      "--edge",        "bottom",   "--align",  "right",         "--width", "200",
                "--widthtype", "pixel",         "--height", "28",       "--SetDockType", "true",    "--tint",
                "0x224466",    "--transparent", "false",    "--expand", "false"};
    }
    throw std::runtime_error("no such tray: " + name);
}

}  // namespace

TrayHostProcess::TrayHostProcess(const PrivateXServer& server, const std::string& name, const std::string& busAddress) {
    ChildProcess::Options options;
    options.command = commandFor(name, server);
    options.environment = server.clientEnvironment();
    options.environment["DBUS_SESSION_BUS_ADDRESS"] = busAddress;
    process_ = std::make_unique<ChildProcess>(options);
}

namespace {

ChildProcess::Options childOptions(const PrivateXServer& server, const std::string& name,
                                   const std::vector<std::string>& titles) {
    ChildProcess::Options options;
    options.command = {FERROWYN_TEST_APPLICATION, name};
    options.command.insert(options.command.end(), titles.begin(), titles.end());
    options.environment = server.clientEnvironment();
    return options;
}

}  // namespace

ApplicationProcess::ApplicationProcess(const PrivateXServer& server, const std::string& name,
                                       const std::vector<std::string>& titles)
    : process_(childOptions(server, name, titles)) {
    if (!process_.waitForOutput("ready")) {
        throw std::runtime_error("waited for " + name + " to open its windows; it said: " + process_.output());
    }
    std::istringstream lines(process_.output());
    std::string word;
    for (xcb_window_t window = 0; lines >> word >> window;) {
        windows_.push_back(window);
    }
}

}  // namespace ferrowyn::x11test
