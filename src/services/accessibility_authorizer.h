#pragma once

#include <deque>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"

namespace ferrowyn {

struct Platform;
class Log;
class MainLoop;
class Trust;
class Workspace;

/// Publishes whether this process is trusted and whether secure keyboard input is on. Main thread; AppServices owns it.
class AccessibilityAuthorizer {
public:
    using Status = AccessibilityStatus;

    explicit AccessibilityAuthorizer(const Platform& platform);

    [[nodiscard]] const Published<Status>& status() const { return status_; }
    /// See `Trust::canBecomeTrusted`.
    [[nodiscard]] bool canBecomeTrusted() const;
    [[nodiscard]] const Published<bool>& isSecureInputActive() const { return isSecureInputActive_; }
    [[nodiscard]] bool hasRequestedTrust() const { return hasRequestedTrust_; }

    /// Reads the trust again, now.
    void refresh();
    /// Asks the system to prompt the user, then refreshes.
    void requestTrust();
    /// Opens the system's settings page for this permission.
    void openAccessibilitySettings();
    /// Reads the trust periodically, first one interval from now, because notifications are not always delivered.
    void restartBackstopTimer();

private:
    /// Refreshes a moment later, because the system's answer changes only after its notification.
    void scheduleRefresh();
    void startSecureInputPolling();
    void readSecureInput();

    MainLoop& mainLoop_;
    Log& log_;
    Trust& trust_;
    Workspace& workspace_;
    Published<Status> status_;
    Published<bool> isSecureInputActive_{false};
    bool hasRequestedTrust_ = false;
    Subscription backstopTimer_;
    Subscription secureInputTimer_;
    std::vector<Subscription> observers_;
    /// Oldest first.
    std::deque<Subscription> pendingRefreshes_;
};

}  // namespace ferrowyn
