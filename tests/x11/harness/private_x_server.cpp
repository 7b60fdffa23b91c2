#include "tests/x11/harness/private_x_server.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <utility>

namespace ferrowyn::x11test {

namespace {

/// The server writes its display number, and a newline, once it accepts connections.
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
        // An empty one has some libraries start a bus, which nobody ends.
        {"DBUS_SESSION_BUS_ADDRESS", "disabled:"},
        {"XDG_CURRENT_DESKTOP", ""},
        {"DESKTOP_SESSION", ""},
        {"GSETTINGS_BACKEND", "memory"},
        {"NO_AT_BRIDGE", "1"},
        {"LANG", "C.UTF-8"},
        {"LC_ALL", "C.UTF-8"},
    };
}

}  // namespace ferrowyn::x11test
