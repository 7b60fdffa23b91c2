#pragma once

#include <memory>

#include "core/published.h"
#include "platform/accessibility_observers.h"
#include "platform/x11/x11_desktop_model.h"

namespace ferrowyn {

/// Hands the model's notifications to the observers of the applications they are about. Main thread.
class X11AccessibilityObservers final : public AccessibilityObservers {
public:
    /// The model outlives this and every observer.
    explicit X11AccessibilityObservers(const X11DesktopModel& model) : model_(model) {}

    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid pid, Handler handler) override;

private:
    const X11DesktopModel& model_;
};

}  // namespace ferrowyn
