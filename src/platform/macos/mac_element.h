#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include "core/app_window.h"
#include "platform/macos/owned.h"

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
