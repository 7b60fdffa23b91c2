#pragma once

#include <optional>
#include <vector>

#include "core/app_window.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// Drives other applications and their windows. Main thread. Every call may be refused or time out; the adapter logs
/// that and the caller goes on. A desktop that takes one request where another takes eight carries each step out as
/// far as it means something there, so that the whole sequence ends with the window raised and focused.
class WindowControl {
public:
    virtual ~WindowControl() = default;

    [[nodiscard]] virtual bool isHidden(Pid pid) const = 0;
    virtual void unhide(Pid pid) = 0;
    /// Activates the application with no options.
    virtual void activate(Pid pid) = 0;
    [[nodiscard]] virtual bool isActive(Pid pid) const = 0;

    /// How long a request to the application, or to one window, may take.
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

    /// Whether something else was chosen after this window was last raised: it has got the focus and lost it again, or
    /// the user has clicked on another window since. What an application or the window manager focuses on the way to
    /// the window is no choice. False where the system does not tell.
    [[nodiscard]] virtual bool wasOvertaken(const AXElementRef& window) const = 0;

    /// The elements of the application's windows; empty when it does not answer.
    [[nodiscard]] virtual std::vector<AXElementRef> windowElements(Pid pid) const = 0;
    [[nodiscard]] virtual std::optional<WindowId> windowNumber(const AXElementRef& window) const = 0;
};

}  // namespace ferrowyn
