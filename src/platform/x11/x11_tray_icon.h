#pragma once

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <QImage>
#include <memory>
#include <optional>
#include <string>

#include "core/posted_work.h"
#include "core/published.h"
#include "platform/qt/tray_symbol_painter.h"
#include "platform/status_item.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_event_connection.h"

namespace ferrowyn {

class MainLoop;

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

/// The icon in a tray that embeds windows: found by the selection that the tray owns, and found again whenever another
/// takes it. Main thread; on a connection of its own, so that its event masks are nobody else's business.
class X11TrayIcon final : public TrayIcon {
public:
    /// `connection` is not null; `mainLoop` outlives this.
    X11TrayIcon(std::unique_ptr<X11Connection> connection, MainLoop& mainLoop, TraySymbolPainter painter);
    ~X11TrayIcon() override;
    X11TrayIcon(const X11TrayIcon&) = delete;
    X11TrayIcon& operator=(const X11TrayIcon&) = delete;

    void setIcon(const std::string& symbol) override;
    void setToolTip(const std::string& title) override;
    void setPressHandler(std::function<void(const Rect& anchor)> handler) override { onPress_ = std::move(handler); }
    [[nodiscard]] bool isShown() const override { return isMapped_; }

private:
    struct Atoms {
        xcb_atom_t selection = XCB_ATOM_NONE;
        xcb_atom_t manager = XCB_ATOM_NONE;
        xcb_atom_t opcode = XCB_ATOM_NONE;
        xcb_atom_t visual = XCB_ATOM_NONE;
        xcb_atom_t colors = XCB_ATOM_NONE;
    };

    void handle(const xcb_generic_event_t& event);
    void handleWindow(const xcb_generic_event_t& event);
    void lookForTray();
    void readTray(xcb_window_t tray);
    void dock(std::optional<xcb_visualid_t> visual);
    void undock();
    void setColors(const X11Property& colors);
    void pressed(const xcb_button_press_event_t& press);
    void redraw();
    void showToolTip() const;

    MainLoop& mainLoop_;
    TraySymbolPainter painter_;
    X11EventConnection events_;
    Atoms atoms_;
    xcb_window_t tray_ = XCB_WINDOW_NONE;
    std::unique_ptr<X11TrayWindow> window_;
    bool isMapped_ = false;
    /// What the tray says texts have in it.
    std::optional<QColor> color_;
    std::string symbol_;
    std::string toolTip_;
    std::function<void(const Rect&)> onPress_;
    Subscription toolTipTimer_;
    /// Dies with this, for answers that are under way.
    LifeToken life_;
};

}  // namespace ferrowyn
