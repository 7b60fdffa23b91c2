#include "tests/macos/fake/fake_core_foundation.h"

#include <CoreGraphics/CoreGraphics.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <mutex>
#include <utility>

#include "core/text_encoding.h"
#include "tests/macos/fake/fake_accessibility.h"

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

namespace {

CFTypeID typeIdOf(const std::string& kind) {
    return std::hash<std::string>{}(kind);
}

template <typename Kind>
Kind* find(const void* reference, const char* user) {
    return Objects::shared().find<Kind>(reference, user);
}

/// The text with the loss byte for each unit that is half of a pair.
std::string bytesOf(const std::u16string& units, char lossByte) {
    std::string bytes;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const bool isHigh = units[i] >= 0xD800 && units[i] < 0xDC00;
        const bool isLow = units[i] >= 0xDC00 && units[i] < 0xE000;
        if (isHigh && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] < 0xE000) {
            bytes += text::utf8FromUtf16(units.substr(i++, 2));
        } else if (isHigh || isLow) {
            bytes += lossByte;
        } else {
            bytes += text::utf8FromUtf16(units.substr(i, 1));
        }
    }
    return bytes;
}

double realOf(const Number& number) {
    return std::visit([](auto content) { return static_cast<double>(content); }, number.value());
}

template <typename Result>
bool storeWhole(const Number::Content& content, void* result) {
    if (const auto* const whole = std::get_if<std::int64_t>(&content)) {
        if (*whole < std::numeric_limits<Result>::min() || *whole > std::numeric_limits<Result>::max()) {
            return false;
        }
        *static_cast<Result*>(result) = static_cast<Result>(*whole);
        return true;
    }
    const double real = std::get<double>(content);
    *static_cast<Result*>(result) = static_cast<Result>(real);
    return std::trunc(real) == real;
}

}  // namespace

CFStringRef String::constant(std::string_view text) {
    static std::mutex lock;
    static auto* const constants = new std::map<std::string, String*, std::less<>>;
    const std::scoped_lock guard(lock);
    auto found = constants->find(text);
    if (found == constants->end()) {
        auto* const string = new String(text::utf16FromUtf8(text));
        Objects::shared().giveToSystem(*string, true);
        found = constants->emplace(text, string).first;
    }
    return found->second->as<CFStringRef>();
}

std::string String::textOf(CFStringRef reference, const char* user) {
    const auto* const string = find<String>(reference, user);
    return string != nullptr ? text::utf8FromUtf16(string->units()) : std::string();
}

bool String::equals(const Object& other) const {
    return units_ == dynamic_cast<const String&>(other).units_;
}

std::size_t String::hash() const {
    return std::hash<std::u16string>{}(units_);
}

const Object* Dictionary::find(const std::string& key) const {
    const auto found = entries_.find(key);
    return found != entries_.end() ? found->second.get() : nullptr;
}

namespace {

CFBooleanRef makeConstant(bool value) {
    auto* const truth = new Truth(value);
    Objects::shared().giveToSystem(*truth, true);
    return truth->as<CFBooleanRef>();
}

std::vector<Held<const Object>> retained(const void** values, CFIndex count, const char* user) {
    std::vector<Held<const Object>> held;
    for (CFIndex i = 0; i < count; ++i) {
        if (const auto* const object = Objects::shared().findAny(values[i], user)) {
            held.push_back(Held<const Object>::retaining(object));
        }
    }
    return held;
}

}  // namespace

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = makeConstant(true);
const CFBooleanRef kCFBooleanFalse = makeConstant(false);
const CFArrayCallBacks kCFTypeArrayCallBacks{};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};

CFTypeID CFStringGetTypeID() {
    return typeIdOf("CFString");
}
CFTypeID CFBooleanGetTypeID() {
    return typeIdOf("CFBoolean");
}
CFTypeID CFNumberGetTypeID() {
    return typeIdOf("CFNumber");
}
CFTypeID CFArrayGetTypeID() {
    return typeIdOf("CFArray");
}
CFTypeID CFDictionaryGetTypeID() {
    return typeIdOf("CFDictionary");
}
CFTypeID AXValueGetTypeID() {
    return typeIdOf("AXValue");
}

CFStringRef __CFStringMakeConstantString(const char* text) {
    return String::constant(text);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count, CFStringEncoding encoding,
                                    Boolean) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
    if (encoding != kCFStringEncodingUTF8 || !ferrowyn::text::isValidUtf8(text)) {
        return nullptr;
    }
    return (new String(ferrowyn::text::utf16FromUtf8(text)))->as<CFStringRef>();
}

CFIndex CFStringGetLength(CFStringRef string) {
    const auto* const found = find<String>(string, "CFStringGetLength");
    return found != nullptr ? static_cast<CFIndex>(found->units().size()) : 0;
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte, Boolean,
                         UInt8* buffer, CFIndex bufferSize, CFIndex* usedSize) {
    const auto* const found = find<String>(string, "CFStringGetBytes");
    if (found == nullptr || encoding != kCFStringEncodingUTF8 ||
        range.location + range.length > static_cast<CFIndex>(found->units().size())) {
        Objects::shared().fault("CFStringGetBytes was asked for what the string does not have");
        return 0;
    }
    const auto units =
        found->units().substr(static_cast<std::size_t>(range.location), static_cast<std::size_t>(range.length));
    const std::string bytes = bytesOf(units, static_cast<char>(lossByte));
    if (buffer != nullptr) {
        if (bufferSize < static_cast<CFIndex>(bytes.size())) {
            Objects::shared().fault("CFStringGetBytes was given too little room");
            return 0;
        }
        bytes.copy(reinterpret_cast<char*>(buffer), bytes.size());
    }
    if (usedSize != nullptr) {
        *usedSize = static_cast<CFIndex>(bytes.size());
    }
    return range.length;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    const auto* const found = find<Truth>(boolean, "CFBooleanGetValue");
    return found != nullptr && found->value();
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    const auto* const found = find<Number>(number, "CFNumberIsFloatType");
    return found != nullptr && std::holds_alternative<double>(found->value());
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    const auto* const found = find<Number>(number, "CFNumberGetValue");
    if (found == nullptr) {
        return false;
    }
    switch (type) {
        case kCFNumberSInt32Type:
            return storeWhole<std::int32_t>(found->value(), value);
        case kCFNumberSInt64Type:
            return storeWhole<std::int64_t>(found->value(), value);
        case kCFNumberDoubleType:
            *static_cast<double*>(value) = realOf(*found);
            return true;
    }
    return false;
}

CFArrayRef CFArrayCreate(CFAllocatorRef, const void** values, CFIndex count, const CFArrayCallBacks* callBacks) {
    if (callBacks != &kCFTypeArrayCallBacks) {
        Objects::shared().fault("CFArrayCreate without the callbacks that retain its values");
    }
    return (new Array(retained(values, count, "CFArrayCreate")))->as<CFArrayRef>();
}

CFIndex CFArrayGetCount(CFArrayRef array) {
    const auto* const found = find<Array>(array, "CFArrayGetCount");
    return found != nullptr ? static_cast<CFIndex>(found->values().size()) : 0;
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    const auto* const found = find<Array>(array, "CFArrayGetValueAtIndex");
    if (found == nullptr || index < 0 || static_cast<std::size_t>(index) >= found->values().size()) {
        Objects::shared().fault("CFArrayGetValueAtIndex beyond the end");
        return nullptr;
    }
    return found->values()[static_cast<std::size_t>(index)].get();
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks || valueCallBacks != &kCFTypeDictionaryValueCallBacks) {
        Objects::shared().fault("CFDictionaryCreate without the callbacks that retain its keys and values");
    }
    Dictionary::Entries entries;
    auto held = retained(values, count, "CFDictionaryCreate");
    for (std::size_t i = 0; i < held.size(); ++i) {
        entries.insert_or_assign(String::textOf(static_cast<CFStringRef>(keys[i]), "CFDictionaryCreate"),
                                 std::move(held[i]));
    }
    return (new Dictionary(std::move(entries)))->as<CFDictionaryRef>();
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    const auto* const found = find<Dictionary>(dictionary, "CFDictionaryGetValue");
    return found != nullptr ? found->find(String::textOf(static_cast<CFStringRef>(key), "CFDictionaryGetValue"))
                            : nullptr;
}

bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGRect* rectangle) {
    const auto* const found = find<Dictionary>(dictionary, "CGRectMakeWithDictionaryRepresentation");
    if (found == nullptr) {
        return false;
    }
    std::array<double, 4> sides{};
    const std::array<const char*, 4> names{"X", "Y", "Width", "Height"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto* const side = dynamic_cast<const Number*>(found->find(names.at(i)));
        if (side == nullptr) {
            return false;
        }
        sides.at(i) = realOf(*side);
    }
    *rectangle = CGRect{{sides[0], sides[1]}, {sides[2], sides[3]}};
    return true;
}

Boolean AXValueGetValue(AXValueRef value, AXValueType type, void* result) {
    const auto* const found = find<AccessibilityValue>(value, "AXValueGetValue");
    if (found == nullptr) {
        return false;
    }
    const auto& content = found->value();
    if (const auto* const point = std::get_if<ferrowyn::Point>(&content);
        point != nullptr && type == kAXValueTypeCGPoint) {
        *static_cast<CGPoint*>(result) = CGPoint{point->x, point->y};
        return true;
    }
    if (const auto* const size = std::get_if<ferrowyn::Size>(&content); size != nullptr && type == kAXValueTypeCGSize) {
        *static_cast<CGSize*>(result) = CGSize{size->width, size->height};
        return true;
    }
    return false;
}
