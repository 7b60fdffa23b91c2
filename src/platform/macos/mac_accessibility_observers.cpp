#include "platform/macos/mac_accessibility_observers.h"

#include <utility>

#include "platform/macos/mac_accessibility_observer.h"

namespace ferrowyn {

std::unique_ptr<AccessibilityObserver> MacAccessibilityObservers::create(Pid pid, Handler handler) {
    return MacAccessibilityObserver::create(pid, std::move(handler), mainLoop_, log_);
}

}  // namespace ferrowyn
