#include "tests/macos/fake/fake_core_foundation.h"

#include <CoreGraphics/CoreGraphics.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <type_traits>
#include <utility>

#include "core/text_encoding.h"
#include "tests/macos/fake/fake_accessibility.h"

namespace ferrowyn::fake {

namespace {

Held<const Object> held(CFTypeRef owned) {
    return Held<const Object>(static_cast<const Object*>(owned));
}

Object* newObject(const Value& value) {
    return std::visit(
        [](const auto& content) -> Object* {
            using Content = std::decay_t<decltype(content)>;
            if constexpr (std::is_same_v<Content, std::monostate>) {
                return new Object("CFNull");
            } else if constexpr (std::is_same_v<Content, std::string>) {
                return new String(text::utf16FromUtf8(content));
            } else if constexpr (std::is_same_v<Content, std::u16string>) {
                return new String(content);
            } else if constexpr (std::is_same_v<Content, bool>) {
                return new Truth(content);
            } else if constexpr (std::is_arithmetic_v<Content>) {
                return new Number(content);
            } else if constexpr (std::is_same_v<Content, ElementId>) {
                return new ElementHandle(content);
            } else if constexpr (std::is_same_v<Content, std::vector<Value>>) {
                std::vector<Held<const Object>> objects;
                std::transform(content.begin(), content.end(), std::back_inserter(objects),
                               [](const Value& each) { return held(copy(each)); });
                return new Array(std::move(objects));
            } else if constexpr (std::is_same_v<Content, Rect>) {
                std::map<std::string, Held<const Object>> sides;
                sides.emplace("X", held(copy(content.x)));
                sides.emplace("Y", held(copy(content.y)));
                sides.emplace("Width", held(copy(content.width)));
                sides.emplace("Height", held(copy(content.height)));
                return new Dictionary(std::move(sides));
            } else if constexpr (std::is_same_v<Content, AccessibilityRect>) {
                return new AccessibilityValue(content.rect);
            } else {
                return new AccessibilityValue(content);
            }
        },
        static_cast<const Value::variant&>(value));
}

template <typename Kind>
Kind& get(const void* reference, const char* user) {
    return Objects::shared().get<Kind>(reference, user);
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
    return std::visit([](auto content) { return static_cast<double>(content); }, number.content);
}

/// False when the number does not fit.
template <typename Result>
bool storeWhole(const Number& number, void* result) {
    const double real = realOf(number);
    const bool fits = std::trunc(real) == real && real >= static_cast<double>(std::numeric_limits<Result>::min()) &&
                      real <= static_cast<double>(std::numeric_limits<Result>::max());
    if (fits) {
        *static_cast<Result*>(result) =
            std::visit([](auto content) { return static_cast<Result>(content); }, number.content);
    }
    return fits;
}

std::vector<Held<const Object>> retained(const void** values, CFIndex count, const char* user) {
    std::vector<Held<const Object>> objects;
    for (CFIndex i = 0; i < count; ++i) {
        objects.push_back(Held<const Object>::retaining(&get<const Object>(values[i], user)));
    }
    return objects;
}

CFBooleanRef constantBoolean(bool value) {
    auto* const truth = new Truth(value);
    Objects::shared().giveToSystem(*truth, true);
    return truth->as<CFBooleanRef>();
}

}  // namespace

CFTypeRef copy(const Value& value) {
    if (const auto* const truth = std::get_if<bool>(&value)) {
        return CFRetain(*truth ? kCFBooleanTrue : kCFBooleanFalse);
    }
    return newObject(value)->as<CFTypeRef>();
}

CFStringRef constantString(std::string_view text) {
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

std::string textOf(const void* string, const char* user) {
    return text::utf8FromUtf16(get<const String>(string, user).content);
}

const Object* valueIn(const Dictionary& dictionary, const std::string& key) {
    const auto found = dictionary.content.find(key);
    return found != dictionary.content.end() ? found->second.get() : nullptr;
}

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;
using ferrowyn::fake::get;

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = constantBoolean(true);
const CFBooleanRef kCFBooleanFalse = constantBoolean(false);
const CFArrayCallBacks kCFTypeArrayCallBacks{};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks{};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks{};

#define TYPE_ID(_kind)                           \
    CFTypeID _kind##GetTypeID() {                \
        return std::hash<std::string>{}(#_kind); \
    }
TYPE_ID(CFString)
TYPE_ID(CFBoolean)
TYPE_ID(CFNumber)
TYPE_ID(CFArray)
TYPE_ID(CFDictionary)
TYPE_ID(AXValue)
TYPE_ID(AXUIElement)

CFStringRef __CFStringMakeConstantString(const char* text) {
    return constantString(text);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count, CFStringEncoding encoding,
                                    Boolean) {
    const std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
    const bool isText = encoding == kCFStringEncodingUTF8 && ferrowyn::text::isValidUtf8(text);
    return isText ? static_cast<CFStringRef>(copy(text)) : nullptr;
}

CFIndex CFStringGetLength(CFStringRef string) {
    return static_cast<CFIndex>(get<String>(string, "CFStringGetLength").content.size());
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 lossByte, Boolean,
                         UInt8* buffer, CFIndex bufferSize, CFIndex* usedSize) {
    const auto& units = get<String>(string, "CFStringGetBytes").content;
    const std::string bytes =
        bytesOf(units.substr(static_cast<std::size_t>(range.location), static_cast<std::size_t>(range.length)),
                static_cast<char>(lossByte));
    if (encoding != kCFStringEncodingUTF8 || range.location + range.length > static_cast<CFIndex>(units.size()) ||
        (buffer != nullptr && bufferSize < static_cast<CFIndex>(bytes.size()))) {
        Objects::shared().fault("CFStringGetBytes was asked for what there is not, or given too little room");
        return 0;
    }
    if (buffer != nullptr) {
        bytes.copy(reinterpret_cast<char*>(buffer), bytes.size());
    }
    if (usedSize != nullptr) {
        *usedSize = static_cast<CFIndex>(bytes.size());
    }
    return range.length;
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
    return get<Truth>(boolean, "CFBooleanGetValue").content;
}

Boolean CFNumberIsFloatType(CFNumberRef number) {
    return std::holds_alternative<double>(get<Number>(number, "CFNumberIsFloatType").content);
}

Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value) {
    const auto& found = get<Number>(number, "CFNumberGetValue");
    switch (type) {
        case kCFNumberSInt32Type:
            return storeWhole<std::int32_t>(found, value);
        case kCFNumberSInt64Type:
            return storeWhole<std::int64_t>(found, value);
        case kCFNumberDoubleType:
            *static_cast<double*>(value) = realOf(found);
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
    return static_cast<CFIndex>(get<Array>(array, "CFArrayGetCount").content.size());
}

const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
    const auto& values = get<Array>(array, "CFArrayGetValueAtIndex").content;
    if (index < 0 || static_cast<std::size_t>(index) >= values.size()) {
        Objects::shared().fault("CFArrayGetValueAtIndex beyond the end");
        return nullptr;
    }
    return values[static_cast<std::size_t>(index)].get();
}

CFDictionaryRef CFDictionaryCreate(CFAllocatorRef, const void** keys, const void** values, CFIndex count,
                                   const CFDictionaryKeyCallBacks* keyCallBacks,
                                   const CFDictionaryValueCallBacks* valueCallBacks) {
    if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks || valueCallBacks != &kCFTypeDictionaryValueCallBacks) {
        Objects::shared().fault("CFDictionaryCreate without the callbacks that retain its keys and values");
    }
    std::map<std::string, Held<const Object>> entries;
    auto objects = retained(values, count, "CFDictionaryCreate");
    for (std::size_t i = 0; i < objects.size(); ++i) {
        entries.insert_or_assign(textOf(keys[i], "CFDictionaryCreate"), std::move(objects[i]));
    }
    return (new Dictionary(std::move(entries)))->as<CFDictionaryRef>();
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
    return valueIn(get<Dictionary>(dictionary, "CFDictionaryGetValue"), textOf(key, "CFDictionaryGetValue"));
}

bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef dictionary, CGRect* rectangle) {
    const auto& found = get<Dictionary>(dictionary, "CGRectMakeWithDictionaryRepresentation");
    CGRect result{};
    const std::pair<const char*, CGFloat&> sides[]{
        {"X", result.origin.x}, {"Y", result.origin.y}, {"Width", result.size.width}, {"Height", result.size.height}};
    for (const auto& [name, value] : sides) {
        const auto* const side = dynamic_cast<const Number*>(valueIn(found, name));
        if (side == nullptr) {
            return false;
        }
        value = realOf(*side);
    }
    *rectangle = result;
    return true;
}

Boolean AXValueGetValue(AXValueRef value, AXValueType type, void* result) {
    const auto& content = get<AccessibilityValue>(value, "AXValueGetValue").content;
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
