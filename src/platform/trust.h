#pragma once

#include <functional>

#include "core/published.h"

namespace ferrowyn {

/// Whether this process may read and control the windows of other applications and capture the keyboard. Main thread;
/// no call waits.
class Trust {
public:
    virtual ~Trust() = default;

    [[nodiscard]] virtual bool isTrusted() const = 0;
    /// False when the display server lacks what capturing the keyboard needs. Then the process cannot become trusted
    /// while it runs, whatever the user allows or starts.
    [[nodiscard]] virtual bool canBecomeTrusted() const = 0;
    /// Shows the system's prompt, where there is one. Returns the value of `isTrusted`.
    virtual bool requestWithPrompt() = 0;
    /// Whether another program holds the keyboard, so that the tap does not get the trigger.
    [[nodiscard]] virtual bool isSecureInputActive() const = 0;

    /// Calls the handler when the trigger was pressed and another program answered it: that program held the keyboard
    /// only while the trigger's modifier was down, as a window manager with a switcher does. Never called where the tap
    /// is always first.
    [[nodiscard]] virtual Subscription observeLostTriggers(std::function<void()> handler) = 0;

    /// Calls the handler when `isTrusted` may have changed or may be about to change. Some changes come without a call.
    [[nodiscard]] virtual Subscription observeChanges(std::function<void()> handler) = 0;
};

}  // namespace ferrowyn
