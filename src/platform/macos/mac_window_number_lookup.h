#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <mutex>
#include <optional>

#include "core/app_window.h"

namespace ferrowyn {

/// Which window number an Accessibility element has. The system knows, but says so only through a function that it does
/// not promise to keep: it is looked up by name, once and on first use, and may be missing. Any thread.
class MacWindowNumberLookup {
public:
    [[nodiscard]] bool isAvailable() const { return function() != nullptr; }
    struct Answer {
        AXError error = kAXErrorSuccess;
        /// Nothing when there is no such function, it fails, or the number is 0, which no window has.
        std::optional<WindowId> number;
    };

    [[nodiscard]] Answer lookUp(AXUIElementRef element) const;
    [[nodiscard]] std::optional<WindowId> numberOf(AXUIElementRef element) const { return lookUp(element).number; }

private:
    using Function = AXError (*)(AXUIElementRef element, CGWindowID* number);

    [[nodiscard]] Function function() const;

    mutable std::once_flag once_;
    mutable Function function_ = nullptr;
};

}  // namespace ferrowyn
