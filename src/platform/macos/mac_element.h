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

    /// Retains the element, which may belong to an array or another owner.
    [[nodiscard]] static AXElementRef make(AXUIElementRef element) {
        return AXElementRef(std::make_shared<const MacElement>(Owned<AXUIElementRef>::retaining(element)));
    }
    /// Borrowed from the handle; null when the handle comes from another desktop.
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

/// The values of several attributes in the order they were asked for. One that cannot be read is null or an object that
/// stands for an error, which counts as absent for every function of `cf`.
struct Answers {
    AXError error = kAXErrorSuccess;
    std::vector<Owned<CFTypeRef>> values;
};

[[nodiscard]] Owned<AXUIElementRef> applicationElement(Pid pid);
/// Sets the timeout of this handle alone: other handles of the same element keep the system's default.
void setMessagingTimeout(AXUIElementRef element, Seconds timeout);

[[nodiscard]] Answer copyAttribute(AXUIElementRef element, CFStringRef attribute);
/// Sends one message for all attributes where the application supports that, else one for each. `error` is set only
/// when the application does not answer.
[[nodiscard]] Answers copyAttributes(AXUIElementRef element, std::initializer_list<CFStringRef> attributes);

/// "AXRaise: error -25204", for the log.
[[nodiscard]] std::string describe(std::string_view request, AXError error);

}  // namespace ferrowyn::accessibility

namespace ferrowyn {

/// The window number of an Accessibility element. The system tells it only through an undocumented function, which is
/// looked up by name once, on first use, and may be missing. Any thread.
class MacWindowNumberLookup {
public:
    [[nodiscard]] bool isAvailable() const { return function() != nullptr; }
    struct Answer {
        AXError error = kAXErrorSuccess;
        /// Absent when the function is missing or fails, or when the number is 0, which no window has.
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
