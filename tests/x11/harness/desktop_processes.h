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
    /// `screens` has a geometry for each screen, such as "1280x800x24". Several screens are joined with Xinerama.
    explicit PrivateXServer(const std::vector<std::string>& screens = {"1280x800x24"},
                            const std::vector<std::string>& extraArguments = {});
    /// Starts Xephyr, whose screen is a window on `host`. `host` outlives it.
    [[nodiscard]] static PrivateXServer nestedIn(const PrivateXServer& host);

    /// In the format of DISPLAY.
    [[nodiscard]] const std::string& display() const { return display_; }
    /// The environment for clients: this display, no Wayland, a private home, nothing from the developer's session.
    [[nodiscard]] std::map<std::string, std::string> clientEnvironment() const;
    [[nodiscard]] const TemporaryFolder& home() const { return home_; }
    /// Ends the server while its clients run.
    void kill() { process_.reset(); }

private:
    PrivateXServer(std::vector<std::string> command, const std::map<std::string, std::string>& environment);

    TemporaryFolder home_;
    std::unique_ptr<ChildProcess> process_;
    std::string display_;
};

/// A private session bus. The services that it starts are clients of the private X server.
class PrivateBus {
public:
    explicit PrivateBus(const PrivateXServer& server);

    /// In the format of DBUS_SESSION_BUS_ADDRESS.
    [[nodiscard]] const std::string& address() const { return address_; }
    /// Ends the bus while its clients run.
    void kill() { process_.reset(); }
    /// Starts it again at the same address.
    void restart();

private:
    void start(const std::vector<std::string>& arguments);

    ChildProcess::Options options_;
    std::unique_ptr<ChildProcess> process_;
    std::string address_;
};

/// A real window manager with its usual binding for Alt+Tab and a private configuration. When the constructor returns,
/// it manages windows.
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

/// A real tray with a private configuration. "lxqt-panel" shows only status notifiers, "xfce4-panel" shows them and
/// embeds windows, "trayer" only embeds windows. The panels are at the screen's upper edge, "trayer" is at the lower
/// one.
class TrayHostProcess {
public:
    TrayHostProcess(const PrivateXServer& server, const PrivateBus& bus, const std::string& name)
        : TrayHostProcess(server, name, bus.address()) {}
    /// For a session without a bus; "trayer" needs none.
    TrayHostProcess(const PrivateXServer& server, const std::string& name)
        : TrayHostProcess(server, name, "disabled:") {}

    [[nodiscard]] ChildProcess& process() { return *process_; }

private:
    TrayHostProcess(const PrivateXServer& server, const std::string& name, const std::string& busAddress);

    std::unique_ptr<ChildProcess> process_;
};

/// An application in a separate process.
class ApplicationProcess {
public:
    /// Opens a window for each title. The windows are mapped, but perhaps not managed yet, when this returns. Windows
    /// after the two titles "--name" and NAME belong to the application NAME.
    ApplicationProcess(const PrivateXServer& server, const std::string& name, const std::vector<std::string>& titles);

    [[nodiscard]] pid_t pid() const { return process_.pid(); }
    [[nodiscard]] const std::vector<xcb_window_t>& windows() const { return windows_; }

private:
    ChildProcess process_;
    std::vector<xcb_window_t> windows_;
};

}  // namespace ferrowyn::x11test
