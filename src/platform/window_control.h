#pragma once

#include <optional>
#include <vector>

#include "core/app_window.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// Controls other applications and their windows. Main thread. Every call may be refused or time out; the adapter logs
/// that and the caller goes on. The calls are the steps of an activation on macOS. Another desktop carries out each
/// step as far as it exists there, so that the whole sequence ends with the window raised and focused.
class WindowControl {
public:
    virtual ~WindowControl() = default;

    [[nodiscard]] virtual bool isHidden(Pid pid) const = 0;
    virtual void unhide(Pid pid) = 0;
    /// Activates the application with no options.
    virtual void activate(Pid pid) = 0;
    [[nodiscard]] virtual bool isActive(Pid pid) const = 0;

    /// Sets how long a request to the application, or to one window, may take.
    virtual void setMessagingTimeout(Pid pid, Seconds timeout) = 0;
    virtual void setMessagingTimeout(const AXElementRef& window, Seconds timeout) = 0;

    virtual void unminimize(const AXElementRef& window) = 0;
    virtual void raise(const AXElementRef& window) = 0;
    virtual void setMain(const AXElementRef& window) = 0;
    virtual void setFocused(const AXElementRef& window) = 0;
    virtual void setFocusedWindow(Pid pid, const AXElementRef& window) = 0;
    virtual void setFrontmost(Pid pid) = 0;

    /// Whether the window is its application's main, or focused, window; nothing when that cannot be read.
    [[nodiscard]] virtual std::optional<bool> isMain(const AXElementRef& window) const = 0;
    [[nodiscard]] virtual std::optional<bool> isFocused(const AXElementRef& window) const = 0;

    /// Whether the user chose another window after this one was last raised: it got the focus and lost it again, or the
    /// user has clicked on another window. A focus that the application or the window manager sets before this window
    /// gets it does not count. False where the system does not report it.
    [[nodiscard]] virtual bool wasOvertaken(const AXElementRef& window) const = 0;

    /// The elements of the application's windows; empty when it does not answer.
    [[nodiscard]] virtual std::vector<AXElementRef> windowElements(Pid pid) const = 0;
    [[nodiscard]] virtual std::optional<WindowId> windowNumber(const AXElementRef& window) const = 0;
};

}  // namespace ferrowyn
