#include "platform/macos/mac_window_number_lookup.h"

#include <dlfcn.h>

namespace ferrowyn {

MacWindowNumberLookup::Answer MacWindowNumberLookup::lookUp(AXUIElementRef element) const {
    const Function ask = function();
    if (ask == nullptr) {
        return {};
    }
    CGWindowID number = kCGNullWindowID;
    const AXError error = ask(element, &number);
    if (error != kAXErrorSuccess || number == kCGNullWindowID) {
        return {error, std::nullopt};
    }
    return {error, number};
}

MacWindowNumberLookup::Function MacWindowNumberLookup::function() const {
    std::call_once(once_,
                   [this] { function_ = reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, "_AXUIElementGetWindow")); });
    return function_;
}

}  // namespace ferrowyn
