#pragma once

#include <array>
#include <optional>

#include "core/published.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/window_control.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/x11_desktop_monitor.h"

namespace ferrowyn {

/// Asks the window manager to activate windows, as a pager does. One request makes the manager restore, raise and focus
/// the window, so `raise` sends it, `setFrontmost` only stacks the window for managers that focus without raising, and
/// the other steps do nothing. Only `bringToFront` waits for the server. Main thread; owned by `X11Platform`.
class X11WindowControl final : public WindowControl {
public:
    /// All references outlive this.
    X11WindowControl(MainLoop& mainLoop, X11DesktopMonitor& monitor, const X11Atoms& atoms, X11InputContext& context,
                     Log& log)
        : mainLoop_(mainLoop), monitor_(monitor), atoms_(atoms), context_(context), log_(log) {
        thefts_ = monitor_.model().focusThefts().subscribe([this](xcb_window_t window) { takeFocusBackFor(window); });
        activeChanges_ = monitor_.model().activeWindowChanges().subscribe(
            [this](xcb_window_t window) { isReached_ = isReached_ || window == requested_; });
    }

    /// X11 cannot hide an application as a whole. An application whose windows are all minimised does not count as
    /// hidden, because restoring one window must not restore the others.
    [[nodiscard]] bool isHidden(Pid /*pid*/) const override { return false; }
    void unhide(Pid /*pid*/) override {}

    /// Activates the application's last active window, otherwise its front-most one. Does nothing while an activation
    /// of one of its windows is under way.
    void activate(Pid pid) override;
    [[nodiscard]] bool isActive(Pid pid) const override;

    /// No request waits for the application, so there is no timeout.
    void setMessagingTimeout(Pid /*pid*/, Seconds /*timeout*/) override {}
    void setMessagingTimeout(const AXElementRef& /*window*/, Seconds /*timeout*/) override {}

    /// Activation restores a minimised window.
    void unminimize(const AXElementRef& /*window*/) override {}
    /// Requests the activation. When it is called again and the window is still minimised, maps the window too, for
    /// managers that restore only that way.
    void raise(const AXElementRef& window) override;
    /// Activates one of this program's windows with the server's present time. A few round trips.
    void bringToFront(xcb_window_t window);
    void setMain(const AXElementRef& /*window*/) override {}
    void setFocused(const AXElementRef& /*window*/) override {}
    void setFocusedWindow(Pid /*pid*/, const AXElementRef& /*window*/) override {}
    void setFrontmost(Pid pid) override;

    [[nodiscard]] std::optional<bool> isMain(const AXElementRef& window) const override;
    [[nodiscard]] std::optional<bool> isFocused(const AXElementRef& window) const override;

    [[nodiscard]] bool wasOvertaken(const AXElementRef& window) const override;

    [[nodiscard]] std::vector<AXElementRef> windowElements(Pid pid) const override;
    [[nodiscard]] std::optional<WindowId> windowNumber(const AXElementRef& window) const override;

private:
    void requestActivation(xcb_window_t window);
    void takeFocusBackFor(xcb_window_t window);
    void sendActivation(xcb_window_t window, xcb_timestamp_t time);
    void stackAbove(xcb_window_t window);
    /// Moves full-screen windows below this window, for a manager that keeps them above it.
    void uncover(xcb_window_t window);
    void sendToManager(xcb_window_t window, xcb_atom_t message, const std::array<std::uint32_t, 5>& data);
    [[nodiscard]] xcb_timestamp_t userTime() const;
    [[nodiscard]] bool isOwnedBy(std::optional<xcb_window_t> window, Pid pid) const;

    MainLoop& mainLoop_;
    X11DesktopMonitor& monitor_;
    const X11Atoms& atoms_;
    X11InputContext& context_;
    Log& log_;
    /// The window of the latest request. Reset after `requestLifetime`, because `activate` does nothing for its
    /// application until then.
    std::optional<xcb_window_t> requested_;
    /// The window of the request before: for a blocked window, its dialog is requested next.
    std::optional<xcb_window_t> requestedBefore_;
    Subscription requestEnd_;
    /// The time of the user's latest input before the request.
    xcb_timestamp_t requestTime_ = 0;
    xcb_window_t activeAtRequest_ = XCB_WINDOW_NONE;
    /// Whether the requested window has been active since.
    bool isReached_ = false;
    Subscription thefts_;
    Subscription activeChanges_;
};

}  // namespace ferrowyn
