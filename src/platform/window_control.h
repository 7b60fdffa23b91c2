#pragma once

#include <optional>

#include "core/app_window.h"

namespace ferrowyn {

/// One try to bring a window to the front and give it the keyboard.
struct RaiseRequest {
    /// The application that gets the keyboard.
    Pid pid = 0;
    /// The window of that application that gets the keyboard: the chosen window, or the modal dialog that blocks it.
    AXElementRef window;
    /// The chosen window when a dialog blocks it. It is raised below the dialog, and gets the keyboard itself if the
    /// dialog has just been closed.
    std::optional<AXElementRef> blockedWindow = std::nullopt;
    /// The chosen window is minimised.
    bool isMinimized = false;
    /// The same was requested before and did not succeed. The first try also shows what is hidden or minimised; a retry
    /// does not ask for that again, except where the desktop has a second way to restore a window that is still
    /// minimised.
    bool isRetry = false;

    /// The window that the user has chosen.
    [[nodiscard]] const AXElementRef& chosenWindow() const { return blockedWindow ? *blockedWindow : window; }
};

/// What the desktop says about a window and the keyboard.
enum class ActivationState {
    /// It has the keyboard: it is the main and focused window of the active application.
    active,
    notActive,
    /// It is not active, because the user chose another window after this one was last raised: it got the focus and
    /// lost it again, or the user has clicked on another window. A focus that the application or the window manager
    /// sets before this window gets it does not count. Only some desktops report it.
    overtaken,
    /// It had the keyboard after it was last raised, and no window has it now. Managers report that between two active
    /// windows, so the next one may be the user's choice. Only some desktops report it.
    lost,
    /// The window is gone, or its application does not answer.
    unreadable,
};

/// Controls other applications and their windows. Main thread. Every request may be refused or time out: the adapter
/// logs that and carries out the rest of the request, and no request holds up the main thread for long. How many steps
/// a request takes is the adapter's matter; when it is repeated or given up is the caller's.
class WindowControl {
public:
    virtual ~WindowControl() = default;

    /// Makes the application the active one. Which of its windows comes to the front is its own choice.
    virtual void activateApplication(Pid pid) = 0;
    virtual void raiseAndFocus(const RaiseRequest& request) = 0;
    /// The state of one of the application's windows.
    [[nodiscard]] virtual ActivationState stateOf(Pid pid, const AXElementRef& window) const = 0;

    /// The element of the application's window with this number; nothing when there is none, or the application does
    /// not answer.
    [[nodiscard]] virtual std::optional<AXElementRef> findWindow(Pid pid, WindowId window) const = 0;
};

}  // namespace ferrowyn
