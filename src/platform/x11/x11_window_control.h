#pragma once

#include <array>
#include <optional>

#include "core/published.h"
#include "platform/log.h"
#include "platform/window_control.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/x11_desktop_monitor.h"

namespace ferrowyn {

/// Asks the window manager to activate windows, as a pager does. One message makes the manager restore, raise and focus
/// a window. Only `bringToFront` waits for the server. Main thread; owned by `X11Platform`.
class X11WindowControl final : public WindowControl {
public:
    /// All references outlive this.
    X11WindowControl(X11DesktopMonitor& monitor, const X11Atoms& atoms, X11InputContext& context, Log& log)
        : monitor_(monitor), atoms_(atoms), context_(context), log_(log) {
        thefts_ = monitor_.model().focusThefts().subscribe([this](xcb_window_t window) { takeFocusBackFor(window); });
        activeChanges_ = monitor_.model().activeWindowChanges().subscribe(
            [this](xcb_window_t window) { isReached_ = isReached_ || window == requested_; });
    }

    /// Activates the application's last active window, otherwise its front-most one.
    void activateApplication(Pid pid) override;
    /// Requests the activation, and stacks the window for managers that focus without raising. A retry also maps a
    /// window that is still minimised, for managers that restore only that way. When the window has been closed
    /// meanwhile, the application is activated instead, at the first try only.
    void raiseAndFocus(const RaiseRequest& request) override;
    [[nodiscard]] ActivationState stateOf(Pid pid, const AXElementRef& window) const override;
    [[nodiscard]] std::optional<AXElementRef> findWindow(Pid pid, WindowId window) const override;

    /// Activates one of this program's windows with the server's present time. A few round trips.
    void bringToFront(xcb_window_t window);

private:
    /// The listed window of the element.
    [[nodiscard]] const X11WindowFacts* listed(const AXElementRef& element) const;
    /// The caller flushes the connection.
    void requestActivation(xcb_window_t window);
    void takeFocusBackFor(xcb_window_t window);
    void sendActivation(xcb_window_t window, xcb_timestamp_t time);
    void stackAbove(xcb_window_t window);
    /// Moves full-screen windows below this window, for a manager that keeps them above it.
    void uncover(xcb_window_t window);
    void sendToManager(xcb_window_t window, xcb_atom_t message, const std::array<std::uint32_t, 5>& data);
    [[nodiscard]] xcb_timestamp_t userTime() const;
    [[nodiscard]] bool isOvertaken(xcb_window_t window) const;

    X11DesktopMonitor& monitor_;
    const X11Atoms& atoms_;
    X11InputContext& context_;
    Log& log_;
    /// The window that was last raised for the logic; None when it was closed by then.
    xcb_window_t raised_ = XCB_WINDOW_NONE;
    /// The window of the latest request, which may be one of this program's.
    xcb_window_t requested_ = XCB_WINDOW_NONE;
    /// The time of the user's latest input before the request.
    xcb_timestamp_t requestTime_ = 0;
    xcb_window_t activeAtRequest_ = XCB_WINDOW_NONE;
    /// Whether the requested window has been active since.
    bool isReached_ = false;
    Subscription thefts_;
    Subscription activeChanges_;
};

}  // namespace ferrowyn
