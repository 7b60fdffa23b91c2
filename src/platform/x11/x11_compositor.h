#pragma once

#include <functional>

#include "core/published.h"
#include "platform/x11/x11_panel_events.h"

namespace ferrowyn {

/// Whether a compositing manager runs, as the owner of its selection tells. Main thread.
class X11Compositor {
public:
    /// `events` outlives this.
    explicit X11Compositor(X11PanelEvents& events);

    [[nodiscard]] bool isRunning() const { return owner_ != XCB_WINDOW_NONE; }
    /// Told each time one starts or stops.
    [[nodiscard]] Subscription observe(std::function<void(bool isRunning)> handler) const;

private:
    void handle(const xcb_generic_event_t& event);

    xcb_atom_t selection_ = XCB_ATOM_NONE;
    xcb_window_t owner_ = XCB_WINDOW_NONE;
    std::uint8_t firstEvent_ = 0;
    Subject<bool> changes_;
    Subscription eventSubscription_;
};

}  // namespace ferrowyn
