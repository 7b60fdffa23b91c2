#pragma once

#include <optional>
#include <utility>

#include "core/published.h"
#include "platform/screens.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/x11_event_connection.h"
#include "platform/x11/x11_screens.h"

namespace ferrowyn {

/// Knows the pointer's position from key events, the panel and raw button presses, and reports clicks outside the
/// panel. Main thread.
class X11Pointer final : public Pointer {
public:
    /// All three outlive this.
    X11Pointer(X11EventConnection& events, const X11Screens& screens, X11InputContext& context);

    [[nodiscard]] Point location() const override;
    void refresh() override;
    [[nodiscard]] Subscription observeClicksElsewhere(std::function<void()> handler) override;

    /// The panel's frame while it is shown, nullopt while it is hidden. Presses outside the frame are clicks elsewhere.
    void panelCovers(const std::optional<X11PixelRect>& panel);
    /// The panel reports the pointer's position on the root window.
    void moved(int x, int y);
    /// The panel reports a button press with its server time. Qt may get the press before this connection does.
    void pressed(std::uint32_t time) { context_.noteUserTime(time); }

private:
    /// Asks the server for the pointer's position on the root window, which is a round trip; nullopt when there is no
    /// reply.
    std::optional<std::pair<int, int>> ask();
    void selectPresses();
    void handle(const xcb_generic_event_t& event);

    X11EventConnection& events_;
    const X11Screens& screens_;
    X11InputContext& context_;
    std::uint8_t inputExtension_ = 0;
    std::optional<X11PixelRect> panel_;
    Subject<bool> clicks_;
    Subscription eventSubscription_;
};

}  // namespace ferrowyn
