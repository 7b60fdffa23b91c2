// A separate file: a program that is linked without it runs on a system that has no such function.
#include <CoreGraphics/CoreGraphics.h>
#include <HIServices/HIServices.h>

#include "tests/macos/fake/fake_accessibility.h"
#include "tests/macos/fake/fake_objects.h"

using namespace ferrowyn::fake;

/// Only ever found by its name.
CF_EXPORT AXError _AXUIElementGetWindow(AXUIElementRef element, CGWindowID* number);

AXError _AXUIElementGetWindow(AXUIElementRef element, CGWindowID* number) {
    const auto* const handle = Objects::shared().find<ElementHandle>(element, "_AXUIElementGetWindow");
    if (handle == nullptr) {
        return kAXErrorIllegalArgument;
    }
    const AXError error = Accessibility::shared().ask("number", handle->id(), handle->timeout);
    const auto found = Accessibility::shared().windowNumber(handle->id());
    if (error != kAXErrorSuccess || !found) {
        // A failure may change the number.
        *number = 4242;
        return error != kAXErrorSuccess ? error : kAXErrorFailure;
    }
    *number = *found;
    return kAXErrorSuccess;
}
