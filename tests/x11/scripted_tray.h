#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "tests/x11/harness/deadline.h"

namespace ferrowyn::x11test {

/// A tray that embeds one window and does nothing by itself, so that a test can look at what it was given.
class ScriptedTray {
public:
    struct Options {
        /// Whether icons are asked to have an alpha channel.
        bool offersAlpha = false;
        /// The colour of its texts, 16 bits a channel.
        std::optional<std::array<std::uint32_t, 3>> textColor;
    };

    /// Takes the trays' selection and tells everybody.
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
