#include "tests/macos/fake/fake_value.h"

#include <utility>

#include "core/text_encoding.h"
#include "tests/macos/fake/fake_core_foundation.h"
#include "tests/macos/fake/fake_element.h"

namespace ferrowyn::fake {

namespace {

Held<const Object> numberObject(double number) {
    return Held<const Object>(new Number(number));
}

struct Copier {
    CFTypeRef operator()(std::monostate) const { return (new Object("CFNull"))->as<CFTypeRef>(); }
    CFTypeRef operator()(const std::string& text) const {
        return (new String(text::utf16FromUtf8(text)))->as<CFTypeRef>();
    }
    CFTypeRef operator()(const std::u16string& units) const { return (new String(units))->as<CFTypeRef>(); }
    CFTypeRef operator()(bool value) const { return CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse); }
    CFTypeRef operator()(std::int64_t number) const { return (new Number(number))->as<CFTypeRef>(); }
    CFTypeRef operator()(double number) const { return (new Number(number))->as<CFTypeRef>(); }
    CFTypeRef operator()(const Point& point) const { return (new AccessibilityValue(point))->as<CFTypeRef>(); }
    CFTypeRef operator()(const Size& size) const { return (new AccessibilityValue(size))->as<CFTypeRef>(); }
    CFTypeRef operator()(const AccessibilityRect& value) const {
        return (new AccessibilityValue(value.rect))->as<CFTypeRef>();
    }
    CFTypeRef operator()(AXError error) const { return (new AccessibilityValue(error))->as<CFTypeRef>(); }
    CFTypeRef operator()(ElementId id) const { return (new ElementHandle(id))->as<CFTypeRef>(); }
    CFTypeRef operator()(const Rect& rect) const {
        Dictionary::Entries entries;
        entries.emplace("X", numberObject(rect.x));
        entries.emplace("Y", numberObject(rect.y));
        entries.emplace("Width", numberObject(rect.width));
        entries.emplace("Height", numberObject(rect.height));
        return (new Dictionary(std::move(entries)))->as<CFTypeRef>();
    }
    CFTypeRef operator()(const std::vector<Value>& values) const {
        std::vector<Held<const Object>> held;
        for (const auto& value : values) {
            held.push_back(Held<const Object>(static_cast<const Object*>(copy(value))));
        }
        return (new Array(std::move(held)))->as<CFTypeRef>();
    }
};

}  // namespace

CFTypeRef copy(const Value& value) {
    return std::visit(Copier{}, static_cast<const Value::variant&>(value));
}

}  // namespace ferrowyn::fake
