// A separate file: a program that is linked without it runs on a system that has no such function.
#include "tests/macos/fake/fake_accessibility.h"

using namespace ferrowyn::fake;

/// Only ever found by its name.
CF_EXPORT AXError _AXUIElementGetWindow(AXUIElementRef element, CGWindowID* number);

AXError _AXUIElementGetWindow(AXUIElementRef element, CGWindowID* number) {
    auto& accessibility = Accessibility::shared();
    const std::scoped_lock guard(accessibility.lock);
    const auto& handle = Objects::shared().get<ElementHandle>(element, "_AXUIElementGetWindow");
    const AXError error = accessibility.ask("number", handle);
    const auto found = error == kAXErrorSuccess ? accessibility.element(handle.id).windowNumber : std::nullopt;
    // A failure may change the number.
    *number = found.value_or(4242);
    return error == kAXErrorSuccess && !found ? kAXErrorFailure : error;
}
