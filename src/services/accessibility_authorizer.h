#pragma once

#include <deque>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"

namespace ferrowyn {

struct Platform;
class Application;
class Log;
class MainLoop;
class Trust;
class Workspace;

/// The one place that knows whether this process is trusted and whether secure keyboard input is on. Main thread.
class AccessibilityAuthorizer {
public:
    using Status = AccessibilityStatus;

    explicit AccessibilityAuthorizer(const Platform& platform);

    [[nodiscard]] const Published<Status>& status() const { return status_; }
    /// As `Trust` says.
    [[nodiscard]] bool canBecomeTrusted() const;
    [[nodiscard]] const Published<bool>& isSecureInputActive() const { return isSecureInputActive_; }
    [[nodiscard]] bool hasRequestedTrust() const { return hasRequestedTrust_; }

    /// Reads the trust again, now.
    void refresh();
    /// Asks the system to prompt the user, then refreshes.
    void requestTrust();
    /// Opens the system's settings where the permission is given.
    void openAccessibilitySettings();
    /// Looks at the trust again and again, first one interval from now; notifications are not always delivered.
    void restartBackstopTimer();

private:
    /// The system needs a moment until its answer follows its own notification.
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
