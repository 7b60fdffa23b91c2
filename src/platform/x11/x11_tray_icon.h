#pragma once

#include <memory>
#include <optional>
#include <string>

#include "core/published.h"
#include "platform/qt/tray_symbol_painter.h"
#include "platform/status_item.h"
#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_property.h"
#include "platform/x11/x11_tray_window.h"

namespace ferrowyn {

class MainLoop;

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
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace ferrowyn
