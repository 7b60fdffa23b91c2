#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "core/published.h"
#include "platform/panel.h"
#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_panel_window.h"
#include "platform/x11/x11_pointer.h"
#include "platform/x11/x11_screens.h"

namespace ferrowyn {

/// Knows whether a compositing manager runs: then the compositing selection has an owner. Main thread.
class X11Compositor {
public:
    /// `events` outlives this.
    explicit X11Compositor(X11EventConnection& events);

    [[nodiscard]] bool isRunning() const { return owner_ != XCB_WINDOW_NONE; }
    /// `onChange` is called each time a compositing manager starts or stops.
    [[nodiscard]] Subscription observe(std::function<void(bool isRunning)> onChange) const;

private:
    void handle(const xcb_generic_event_t& event);

    xcb_atom_t selection_ = XCB_ATOM_NONE;
    xcb_window_t owner_ = XCB_WINDOW_NONE;
    std::uint8_t firstEvent_ = 0;
    Subject<bool> changes_;
    Subscription eventSubscription_;
};

/// The panel on X11: an override-redirect window, which the window manager does not manage. Main thread.
class X11Panel final : public Panel {
public:
    /// All of them outlive this.
    X11Panel(X11EventConnection& events, const X11Screens& screens, const X11Compositor& compositor,
             X11Pointer& pointer);
    ~X11Panel() override;
    X11Panel(const X11Panel&) = delete;
    X11Panel& operator=(const X11Panel&) = delete;

    void setContent(std::unique_ptr<PanelContent> content) override;
    void setFrame(const Rect& frame) override;
    void layOutContent() override;
    void prepare(const Rect& frame) override;
    void orderFront() override;
    void orderFrontRegardless() override;
    void orderOut() override;

private:
    void finishHiding();
    void makeWindow();
    void prime(const X11PixelRect& frame);
    void redraw();
    void stayOnTop(const xcb_generic_event_t& event);

    X11EventConnection& events_;
    const X11Screens& screens_;
    const X11Compositor& compositor_;
    X11Pointer& pointer_;
    std::unique_ptr<PanelContent> content_;
    std::unique_ptr<X11PanelWindow> window_;
    X11PixelRect frame_;
    bool isShown_ = false;
    /// The server has unmapped the window, but Qt's `hide` is still to be called.
    bool isHidePending_ = false;
    /// The frame for which the content was drawn in advance; nullopt before the first time.
    std::optional<X11PixelRect> prepared_;
    /// Whether that drawing is the window's background, which the server paints when it maps the window.
    bool isPrimed_ = false;
    int raisesLeft_ = 0;
    Subscription compositorSubscription_;
    Subscription eventSubscription_;
};

}  // namespace ferrowyn
