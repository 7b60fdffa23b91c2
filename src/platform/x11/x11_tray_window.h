#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <QImage>
#include <optional>
#include <string>

#include "platform/x11/x11_connection.h"

namespace ferrowyn {

/// The small window that a tray takes in. Its ground is the tray's: transparent where the tray offers a visual for
/// that, else whatever the tray has painted below. Main thread.
class X11TrayWindow {
public:
    /// `visual` is the one the tray asks for; the screen's own otherwise. The connection outlives this.
    X11TrayWindow(const X11Connection& connection, std::optional<xcb_visualid_t> visual);
    ~X11TrayWindow();
    X11TrayWindow(const X11TrayWindow&) = delete;
    X11TrayWindow& operator=(const X11TrayWindow&) = delete;

    [[nodiscard]] xcb_window_t id() const { return window_; }
    /// The larger square that fits.
    [[nodiscard]] int side() const;
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    void resized(int width, int height);
    /// The window has gone already, with whoever took it in.
    void forget() { window_ = XCB_WINDOW_NONE; }

    void setTitle(const std::string& title);
    /// In the middle of the window.
    void draw(const QImage& icon);

private:
    void describe();

    const X11Connection& connection_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    xcb_colormap_t colormap_ = XCB_NONE;
    xcb_render_picture_t picture_ = XCB_NONE;
    xcb_render_pictformat_t iconFormat_ = XCB_NONE;
    int width_ = 0;
    int height_ = 0;
};

}  // namespace ferrowyn
