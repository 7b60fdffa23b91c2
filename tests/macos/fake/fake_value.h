#pragma once

#include <HIServices/HIServices.h>

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "core/geometry.h"

namespace ferrowyn::fake {

/// An Accessibility element of the scripted desktop.
struct ElementId {
    int number = 0;
    friend auto operator<=>(const ElementId&, const ElementId&) = default;
};

/// A rectangle as the Accessibility interface sends it, and not as the window server does.
struct AccessibilityRect {
    Rect rect;
};

/// What a script says an attribute or a key is; the fake makes a new object of it for every answer. UTF-16 stands for
/// text that need not be well formed, an error for one in the place of a value, monostate for a value that is no value.
struct Value : std::variant<std::monostate, std::string, std::u16string, bool, std::int64_t, double, Point, Size, Rect,
                            AccessibilityRect, AXError, ElementId, std::vector<Value>> {
    using variant::variant;
};

/// An object that the caller owns. The elements carry no messaging timeout of their own.
[[nodiscard]] CFTypeRef copy(const Value& value);

}  // namespace ferrowyn::fake
