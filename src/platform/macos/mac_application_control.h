#pragma once

#include "core/app_window.h"

namespace ferrowyn {

/// What running applications, rather than Accessibility, are asked for when a window is activated. Main thread. A
/// process that has gone is not hidden, not active, and nothing can be asked of it.
class MacApplicationControl {
public:
    virtual ~MacApplicationControl() = default;

    [[nodiscard]] virtual bool isHidden(Pid pid) const = 0;
    virtual void unhide(Pid pid) = 0;
    /// Activates the application with no options.
    virtual void activate(Pid pid) = 0;
    [[nodiscard]] virtual bool isActive(Pid pid) const = 0;
};

}  // namespace ferrowyn
