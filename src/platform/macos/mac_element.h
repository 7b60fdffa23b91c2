#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <initializer_list>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "platform/macos/cf_values.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// An Accessibility element as the logic holds it. Two handles of one element are equal. Immutable; any thread.
class MacElement final : public AXElement {
public:
    explicit MacElement(Owned<AXUIElementRef> element) : element_(std::move(element)) {}

    /// A reference of its own to an element that an array or another owner holds.
    [[nodiscard]] static AXElementRef make(AXUIElementRef element) {
        return AXElementRef(std::make_shared<const MacElement>(Owned<AXUIElementRef>::retaining(element)));
    }
    /// The element behind a handle, borrowed from it; null when the handle is not of this desktop.
    [[nodiscard]] static AXUIElementRef elementOf(const AXElementRef& reference) {
        const auto* const element = dynamic_cast<const MacElement*>(&reference.element());
        return element == nullptr ? nullptr : element->element_.get();
    }

    [[nodiscard]] bool equals(const AXElement& other) const override {
        const auto* const element = dynamic_cast<const MacElement*>(&other);
        return element != nullptr && CFEqual(element->element_.get(), element_.get()) != 0;
    }
    [[nodiscard]] std::size_t hash() const override { return CFHash(element_.get()); }

private:
    Owned<AXUIElementRef> element_;
};

}  // namespace ferrowyn

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
