#pragma once

#include <optional>
#include <utility>

#include "core/published.h"
#include "platform/screens.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_screens.h"

namespace ferrowyn {

/// The pointer as key events, the panel and raw button presses report it. Main thread.
class X11Pointer final : public Pointer {
public:
    /// All three outlive this.
    X11Pointer(X11PanelEvents& events, const X11Screens& screens, X11InputContext& context);

    [[nodiscard]] Point location() const override;
    void refresh() override;
    [[nodiscard]] Subscription observeClicksElsewhere(std::function<void()> handler) override;

    /// Where the panel is while it is shown: presses outside are clicks elsewhere. Others are let pass.
    void panelCovers(const std::optional<X11PixelRect>& panel);
    /// The panel has seen the pointer at this place on the root window.
    void moved(int x, int y);
    /// A button went down in the panel, at this time of the server: the toolkit has heard of it, perhaps first.
    void pressed(std::uint32_t time) { context_.noteUserTime(time); }

private:
    /// Asks the server where the pointer is on the root window; nothing when it does not say.
    std::optional<std::pair<int, int>> ask();
    void selectPresses();
    void handle(const xcb_generic_event_t& event);

    X11PanelEvents& events_;
    const X11Screens& screens_;
    X11InputContext& context_;
    std::uint8_t inputExtension_ = 0;
    std::optional<X11PixelRect> panel_;
    Subject<bool> clicks_;
    Subscription eventSubscription_;
};

}  // namespace ferrowyn
