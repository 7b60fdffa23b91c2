#pragma once

#include <string_view>

#include "platform/accessibility_observers.h"

namespace ferrowyn {

class Log;
class MainLoop;

/// The name that the system knows the notification by.
[[nodiscard]] std::string_view systemName(AccessibilityNotification notification);

/// Makes observers of applications. Main thread.
class MacAccessibilityObservers final : public AccessibilityObservers {
public:
    /// Both outlive this and every observer.
    MacAccessibilityObservers(MainLoop& mainLoop, Log& log) : mainLoop_(mainLoop), log_(log) {}

    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) override;

private:
    MainLoop& mainLoop_;
    Log& log_;
};

}  // namespace ferrowyn
