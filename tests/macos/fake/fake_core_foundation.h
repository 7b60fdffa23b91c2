#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <HIServices/HIServices.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/geometry.h"
#include "tests/macos/fake/fake_objects.h"

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

/// The value of an attribute or a key in a script; the fake makes a new object of it for every answer. UTF-16 is for
/// text that need not be well formed, an error stands in the place of a value, and monostate is an object that is no
/// value.
struct Value : std::variant<std::monostate, std::string, std::u16string, bool, std::int64_t, double, Point, Size, Rect,
                            AccessibilityRect, AXError, ElementId, std::vector<Value>> {
    using variant::variant;
};

/// An object that the caller owns. Elements have the default messaging timeout.
[[nodiscard]] CFTypeRef copy(const Value& value);

/// An object that holds a value of the system.
template <typename Content>
class Box final : public Object {
public:
    explicit Box(Content held) : Object(kind), content(std::move(held)) {}

    const Content content;

private:
    static const char* const kind;
};

/// The units need not be well-formed UTF-16.
using String = Box<std::u16string>;
using Truth = Box<bool>;
using Number = Box<std::variant<std::int64_t, double>>;
using Array = Box<std::vector<Held<const Object>>>;
using Dictionary = Box<std::map<std::string, Held<const Object>>>;
/// A value of the Accessibility interface.
using AccessibilityValue = Box<std::variant<Point, Size, Rect, AXError>>;

template <>
inline const char* const String::kind = "CFString";
template <>
inline const char* const Truth::kind = "CFBoolean";
template <>
inline const char* const Number::kind = "CFNumber";
template <>
inline const char* const Array::kind = "CFArray";
template <>
inline const char* const Dictionary::kind = "CFDictionary";
template <>
inline const char* const AccessibilityValue::kind = "AXValue";

/// A constant string, which is never destroyed.
[[nodiscard]] CFStringRef constantString(std::string_view text);
/// As UTF-8.
[[nodiscard]] std::string textOf(const void* string, const char* user);
/// Null when the dictionary has no such key.
[[nodiscard]] const Object* valueIn(const Dictionary& dictionary, const std::string& key);

}  // namespace ferrowyn::fake
