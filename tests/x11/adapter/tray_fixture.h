#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/linux_tray_icon.h"
#include "platform/qt/qt_main_loop.h"
#include "platform/x11/x11_event_connection.h"
#include "tests/ui/status_menu_model.h"
#include "tests/x11/adapter/toolkit_session.h"
#include "tests/x11/harness/desktop_processes.h"
#include "ui/menu/popup_status_item.h"

namespace ferrowyn::x11test {

/// No tray uses this colour, so that the icon can be found by it.
inline constexpr std::uint32_t iconColor = 0xFF00FF;

/// The icon and its menu in this process, on a private desktop with a private bus.
class TrayRig : public ToolkitSession {
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

    PrivateBus bus{server};
    std::unique_ptr<X11EventConnection> events;
    std::unique_ptr<QtMainLoop> mainLoop;
    std::unique_ptr<QtBackgroundWork> backgroundWork;
    std::unique_ptr<LinuxTrayIcon> icon;
    std::unique_ptr<PopupStatusItem> item;
    std::vector<MenuRow::Action> chosen;

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

/// A tray that embeds one window and does nothing by itself, so that a test can look at what it was given.
class ScriptedTray {
public:
    struct Options {
        /// Whether icons are asked to have an alpha channel.
        bool offersAlpha = false;
        /// The colour of its texts, 16 bits a channel.
        std::optional<std::array<std::uint32_t, 3>> textColor;
    };

    /// Takes the selection of the tray and announces that to all clients.
    ScriptedTray(const std::string& display, const Options& options);
    ~ScriptedTray();
    ScriptedTray(const ScriptedTray&) = delete;
    ScriptedTray& operator=(const ScriptedTray&) = delete;

    /// The window that asked to be taken in, once it has; takes it in at (20, 2) in the tray, 28 by 28.
    [[nodiscard]] std::optional<xcb_window_t> dockedWindow();
    void setTextColor(const std::array<std::uint32_t, 3>& color);
    /// Gives the window back to the root, as a tray that ends well does.
    void letGo();
    [[nodiscard]] std::uint8_t depthOf(xcb_window_t window) const;

private:
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    std::optional<xcb_window_t> docked_;
};

}  // namespace ferrowyn::x11test
