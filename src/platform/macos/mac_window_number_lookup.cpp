#include "platform/macos/mac_window_number_lookup.h"

#include <dlfcn.h>

namespace ferrowyn {

std::optional<WindowId> MacWindowNumberLookup::numberOf(AXUIElementRef element) const {
    const Function lookUp = function();
    CGWindowID number = kCGNullWindowID;
    if (lookUp == nullptr || lookUp(element, &number) != kAXErrorSuccess || number == kCGNullWindowID) {
        return std::nullopt;
    }
    return number;
}

MacWindowNumberLookup::Function MacWindowNumberLookup::function() const {
    std::call_once(once_,
                   [this] { function_ = reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, "_AXUIElementGetWindow")); });
    return function_;
}

}  // namespace ferrowyn
