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

}  // namespace ferrowyn::fake

namespace ferrowyn::fake {

/// A string; its units need not be well-formed UTF-16.
class String final : public Object {
public:
    explicit String(std::u16string units) : Object("CFString"), units_(std::move(units)) {}
    /// A constant string, which is never destroyed.
    [[nodiscard]] static CFStringRef constant(std::string_view text);
    /// As UTF-8; empty, and a fault, when the reference is not to a string.
    [[nodiscard]] static std::string textOf(CFStringRef reference, const char* user);

    [[nodiscard]] const std::u16string& units() const { return units_; }
    [[nodiscard]] bool equals(const Object& other) const override;
    [[nodiscard]] std::size_t hash() const override;

private:
    std::u16string units_;
};

class Truth final : public Object {
public:
    explicit Truth(bool value) : Object("CFBoolean"), value_(value) {}
    [[nodiscard]] bool value() const { return value_; }

private:
    bool value_;
};

class Number final : public Object {
public:
    using Content = std::variant<std::int64_t, double>;
    explicit Number(Content value) : Object("CFNumber"), value_(value) {}
    [[nodiscard]] Content value() const { return value_; }

private:
    Content value_;
};

class Array final : public Object {
public:
    explicit Array(std::vector<Held<const Object>> values) : Object("CFArray"), values_(std::move(values)) {}
    [[nodiscard]] const std::vector<Held<const Object>>& values() const { return values_; }

private:
    std::vector<Held<const Object>> values_;
};

class Dictionary final : public Object {
public:
    using Entries = std::map<std::string, Held<const Object>>;
    explicit Dictionary(Entries entries) : Object("CFDictionary"), entries_(std::move(entries)) {}
    /// Null when there is none.
    [[nodiscard]] const Object* find(const std::string& key) const;

private:
    Entries entries_;
};

/// A value of the Accessibility interface.
class AccessibilityValue final : public Object {
public:
    using Content = std::variant<Point, Size, Rect, AXError>;
    explicit AccessibilityValue(Content value) : Object("AXValue"), value_(value) {}
    [[nodiscard]] const Content& value() const { return value_; }

private:
    Content value_;
};

}  // namespace ferrowyn::fake
