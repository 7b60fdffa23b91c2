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

/// The small window that a tray embeds. Its background is transparent when the tray offers a visual with alpha,
/// otherwise what the tray has painted below it. Main thread; owned by `X11TrayIcon`.
class X11TrayWindow {
public:
    /// `visual` is the one that the tray asks for; without it, the root window's is used. The connection outlives this.
    X11TrayWindow(const X11Connection& connection, std::optional<xcb_visualid_t> visual);
    ~X11TrayWindow();
    X11TrayWindow(const X11TrayWindow&) = delete;
    X11TrayWindow& operator=(const X11TrayWindow&) = delete;

    [[nodiscard]] xcb_window_t id() const { return window_; }
    /// The side of the largest square that fits into the window.
    [[nodiscard]] int side() const;
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    void resized(int width, int height);
    /// The window no longer exists: it was destroyed together with the tray.
    void forget() { window_ = XCB_WINDOW_NONE; }

    void setTitle(const std::string& title);
    /// Draws the icon in the middle of the window.
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

/// The icon in a tray that embeds windows (XEmbed). The tray is the owner of the tray selection; when the owner
/// changes, the icon moves to the new tray. Main thread.
class X11TrayIcon final : public TrayIcon {
public:
    /// Both references outlive this.
    X11TrayIcon(X11EventConnection& events, MainLoop& mainLoop, TraySymbolPainter painter);
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
    X11EventConnection& events_;
    Atoms atoms_;
    xcb_window_t tray_ = XCB_WINDOW_NONE;
    std::unique_ptr<X11TrayWindow> window_;
    bool isMapped_ = false;
    /// The colour of texts in the tray; nullopt when the tray does not say.
    std::optional<QColor> color_;
    std::string symbol_;
    std::string toolTip_;
    std::function<void(const Rect&)> onPress_;
    Subscription toolTipTimer_;
    Subscription eventSubscription_;
    /// Replies may arrive after this object is destroyed.
    LifeToken life_;
};

}  // namespace ferrowyn
