#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/linux_tray_icon.h"
#include "platform/qt/qt_main_loop.h"
#include "tests/ui/status_menu_model.h"
#include "tests/x11/harness/private_bus.h"
#include "tests/x11/harness/private_x_server.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/toolkit_wait.h"
#include "tests/x11/harness/tray_host_process.h"
#include "tests/x11/harness/window_manager_process.h"
#include "ui/menu/popup_status_item.h"

namespace ferrowyn::x11test {

/// No tray has this colour of its own, so that the icon can be found by it.
inline constexpr std::uint32_t iconColor = 0xFF00FF;

/// The icon and its menu in this process, on a private desktop with a private bus.
class TrayRig {
public:
    struct Options {
        bool hasBus = true;
        /// Whether the icon may be embedded.
        bool hasFallback = true;
        /// Draws the icon; a plain square of `iconColor` by default.
        TraySymbolPainter draws;
        std::string scale = "1";
        std::string screen = "1280x800x24";
    };

    TrayRig() : TrayRig(Options{}) {}
    explicit TrayRig(const Options& options);

    PrivateXServer server;
    PrivateBus bus;
    WindowManagerProcess manager;
    TestDesktop desktop;
    TestInput input;
    int argumentCount = 1;
    char name[9] = "ferrowyn";
    char* arguments[2] = {name, nullptr};
    std::unique_ptr<QApplication> application;
    std::unique_ptr<QtMainLoop> mainLoop;
    std::unique_ptr<QtBackgroundWork> backgroundWork;
    std::unique_ptr<LinuxTrayIcon> icon;
    std::unique_ptr<PopupStatusItem> item;
    std::vector<MenuRow::Action> chosen;

    /// Runs the loop until the predicate holds; what happens outside this process is looked at again at each tick.
    [[nodiscard]] static bool runUntil(const std::function<bool()>& predicate) { return runToolkitUntil(predicate); }
    [[nodiscard]] bool waitForHost(LinuxTrayIcon::Host host);
    /// Where the icon is on the screen, found by its colour.
    [[nodiscard]] std::optional<TestDesktop::Place> iconPlace() const;
    /// Waits until the icon is on the screen and stays in one place.
    [[nodiscard]] std::optional<TestDesktop::Place> waitForIcon();
    /// Clicks in the middle of the icon and waits for the menu; its place, or nothing when none came.
    [[nodiscard]] std::optional<TestDesktop::Place> openMenu(std::uint8_t button);
    [[nodiscard]] bool waitUntilMenuIsGone();
    [[nodiscard]] std::unique_ptr<TrayHostProcess> startHost(const std::string& program) {
        return std::make_unique<TrayHostProcess>(server, bus, program);
    }
};

}  // namespace ferrowyn::x11test
