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

/// Asks the window manager to activate windows, as a pager does. One request does what takes other desktops eight: the
/// manager restores, raises and focuses the window together. So `raise` sends it at once, `setFrontmost` adds the
/// stacking for managers that focus without raising, and the steps between find their work done. Main thread; nothing
/// here waits for an answer, except what is asked for the program's own windows.
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

    /// Applications as a whole cannot be hidden here. All of one's windows being minimised is not that: the user
    /// minimised each, and restoring one must not bring back the others.
    [[nodiscard]] bool isHidden(Pid /*pid*/) const override { return false; }
    void unhide(Pid /*pid*/) override {}

    /// Activates the application's last active window, or its front-most one, unless one of its windows is on its way.
    void activate(Pid pid) override;
    [[nodiscard]] bool isActive(Pid pid) const override;

    /// Requests to the manager are never waited for.
    void setMessagingTimeout(Pid /*pid*/, Seconds /*timeout*/) override {}
    void setMessagingTimeout(const AXElementRef& /*window*/, Seconds /*timeout*/) override {}

    /// Activation restores a minimised window; see `raise` for managers with which it does not.
    void unminimize(const AXElementRef& /*window*/) override {}
    void raise(const AXElementRef& window) override;
    /// One of this program's own windows, which the user has asked for now.
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
    /// Where the manager does not do that by itself: takes full-screen windows out of the way of the window.
    void uncover(xcb_window_t window);
    void sendToManager(xcb_window_t window, xcb_atom_t message, const std::array<std::uint32_t, 5>& data);
    [[nodiscard]] xcb_timestamp_t userTime() const;
    [[nodiscard]] bool isOwnedBy(std::optional<xcb_window_t> window, Pid pid) const;

    MainLoop& mainLoop_;
    X11DesktopMonitor& monitor_;
    const X11Atoms& atoms_;
    X11InputContext& context_;
    Log& log_;
    /// The window that was last asked for; forgotten after a while, or it would stand in the way of the next request
    /// for its application.
    std::optional<xcb_window_t> requested_;
    /// The one before it: a blocked window is asked for and then its dialog.
    std::optional<xcb_window_t> requestedBefore_;
    Subscription requestEnd_;
    /// The user's latest input when it was asked for.
    xcb_timestamp_t requestTime_ = 0;
    xcb_window_t activeAtRequest_ = XCB_WINDOW_NONE;
    /// Whether it has been the active one since.
    bool isReached_ = false;
    Subscription thefts_;
    Subscription activeChanges_;
};

}  // namespace ferrowyn
