#pragma once

#include <functional>

#include "core/published.h"

namespace ferrowyn {

/// Whether this process may read and drive other applications' windows and capture the keyboard. Main thread; nothing
/// here waits.
class Trust {
public:
    virtual ~Trust() = default;

    [[nodiscard]] virtual bool isTrusted() const = 0;
    /// False where the display server itself lacks what capturing the keyboard needs: then no trust comes while this
    /// program runs, whatever the user allows or starts.
    [[nodiscard]] virtual bool canBecomeTrusted() const = 0;
    /// Asks with the system's prompt, where the system has one, and answers as `isTrusted` does.
    virtual bool requestWithPrompt() = 0;
    /// Another program holds the keyboard for itself, so that the trigger cannot be seen.
    [[nodiscard]] virtual bool isSecureInputActive() const = 0;

    /// The trigger was pressed and another program answered it: it held the keyboard for no longer than the trigger's
    /// modifier was down, as a window manager does for a switcher of its own. Never where the tap is always first.
    [[nodiscard]] virtual Subscription observeLostTriggers(std::function<void()> handler) = 0;

    /// A hint that the answer may have changed, or be about to; not every change is hinted at.
    [[nodiscard]] virtual Subscription observeChanges(std::function<void()> handler) = 0;
};

}  // namespace ferrowyn
