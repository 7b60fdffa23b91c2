#pragma once

#include <xcb/xcb.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// A private X server (Xvfb or Xephyr), on a display number that the server chooses.
class PrivateXServer {
public:
    /// `screens`: one geometry a screen, such as "1280x800x24"; more than one are joined with Xinerama.
    explicit PrivateXServer(const std::vector<std::string>& screens = {"1280x800x24"},
                            const std::vector<std::string>& extraArguments = {});
    /// Xephyr: a server whose screen is a window on another one's, which outlives it.
    [[nodiscard]] static PrivateXServer nestedIn(const PrivateXServer& host);

    /// As in DISPLAY.
    [[nodiscard]] const std::string& display() const { return display_; }
    /// The environment of a client: this display, no Wayland, a private home, no part of the developer's session.
    [[nodiscard]] std::map<std::string, std::string> clientEnvironment() const;
    [[nodiscard]] const TemporaryFolder& home() const { return home_; }
    /// Ends the server under its clients.
    void kill() { process_.reset(); }

private:
    PrivateXServer(std::vector<std::string> command, const std::map<std::string, std::string>& environment);

    TemporaryFolder home_;
    std::unique_ptr<ChildProcess> process_;
    std::string display_;
};

/// A private session bus, whose services are clients of the private X server.
class PrivateBus {
public:
    explicit PrivateBus(const PrivateXServer& server);

    /// As in DBUS_SESSION_BUS_ADDRESS.
    [[nodiscard]] const std::string& address() const { return address_; }
    /// Ends the bus under its clients.
    void kill() { process_.reset(); }
    /// Starts it again at the same address.
    void restart();

private:
    void start(const std::vector<std::string>& arguments);

    ChildProcess::Options options_;
    std::unique_ptr<ChildProcess> process_;
    std::string address_;
};

/// A real window manager with its own binding for Alt+Tab, started with a private configuration; running (it has
/// announced itself on the root window) when the constructor returns.
class WindowManagerProcess {
public:
    /// "openbox", "xfwm4", "icewm", "metacity", "i3", "kwin_x11", "mutter", "dwm" or "wmaker". With `replacing`, it
    /// takes over from a manager that runs already.
    WindowManagerProcess(const PrivateXServer& server, const std::string& name, bool replacing = false);

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] ChildProcess& process() { return *process_; }

private:
    std::string name_;
    std::unique_ptr<ChildProcess> process_;
};

/// A real tray with a private configuration, ended with this object: "lxqt-panel", which only shows status notifiers,
/// "xfce4-panel", which shows them and embeds windows, both at the screen's upper edge, or "trayer", which only embeds
/// windows, at its lower edge.
class TrayHostProcess {
public:
    TrayHostProcess(const PrivateXServer& server, const PrivateBus& bus, const std::string& name)
        : TrayHostProcess(server, name, bus.address()) {}
    /// Where the session has no bus; "trayer" needs none.
    TrayHostProcess(const PrivateXServer& server, const std::string& name)
        : TrayHostProcess(server, name, "disabled:") {}

    [[nodiscard]] ChildProcess& process() { return *process_; }

private:
    TrayHostProcess(const PrivateXServer& server, const std::string& name, const std::string& busAddress);

    std::unique_ptr<ChildProcess> process_;
};

/// An application with windows in another process, ended with this object.
class ApplicationProcess {
public:
    /// One window a title; they are mapped, though not yet managed, when this returns. The windows after the two titles
    /// "--name" and another name are of the application of that name.
    ApplicationProcess(const PrivateXServer& server, const std::string& name, const std::vector<std::string>& titles);

    [[nodiscard]] pid_t pid() const { return process_.pid(); }
    [[nodiscard]] const std::vector<xcb_window_t>& windows() const { return windows_; }

private:
    ChildProcess process_;
    std::vector<xcb_window_t> windows_;
};

}  // namespace ferrowyn::x11test
