#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "platform/macos/owned.h"
#include "platform/main_loop.h"

/// Reading Accessibility attributes. Each call is a message to another process and waits for the answer for as long as
/// the element's messaging timeout allows. Any thread.
namespace ferrowyn::accessibility {

/// What an application answered; without a value when it refused or did not answer.
struct Answer {
    AXError error = kAXErrorSuccess;
    Owned<CFTypeRef> value;
};

/// The values of several attributes in the order they were asked for, null where one cannot be read.
struct Answers {
    AXError error = kAXErrorSuccess;
    std::vector<Owned<CFTypeRef>> values;
};

[[nodiscard]] Owned<AXUIElementRef> applicationElement(Pid pid);
/// Goes with this handle of the element, not with the element: another handle has the system's own timeout.
void setMessagingTimeout(AXUIElementRef element, Seconds timeout);

[[nodiscard]] Answer copyAttribute(AXUIElementRef element, CFStringRef attribute);
/// One message for all of them where the application takes that, one each where it does not. An error for the whole
/// means that nobody answers; a value that cannot be read has an entry of its own instead.
[[nodiscard]] Answers copyAttributes(AXUIElementRef element, std::initializer_list<CFStringRef> attributes);

/// "AXRaise: error -25204", for the log.
[[nodiscard]] std::string describe(std::string_view request, AXError error);

}  // namespace ferrowyn::accessibility
