#include "platform/macos/cf_values.h"

#include <limits>

namespace ferrowyn::cf {

namespace {

/// Whole numbers only: 7.5 is not a window number.
template <typename Value>
std::optional<Value> whole(CFTypeRef object, CFNumberType type) {
    const auto number = castTo<CFNumberRef>(object);
    Value value = 0;
    if (number == nullptr || CFNumberIsFloatType(number) != 0 || CFNumberGetValue(number, type, &value) == 0) {
        return std::nullopt;
    }
    return value;
}

}  // namespace

std::optional<std::string> string(CFTypeRef object) {
    const auto text = castTo<CFStringRef>(object);
    if (text == nullptr) {
        return std::nullopt;
    }
    constexpr UInt8 replacement = '?';
    const CFRange everything = CFRangeMake(0, CFStringGetLength(text));
    CFIndex size = 0;
    CFStringGetBytes(text, everything, kCFStringEncodingUTF8, replacement, false, nullptr, 0, &size);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    CFStringGetBytes(text, everything, kCFStringEncodingUTF8, replacement, false,
                     reinterpret_cast<UInt8*>(bytes.data()), size, &size);
    return bytes;
}

std::optional<bool> boolean(CFTypeRef object) {
    if (const auto value = castTo<CFBooleanRef>(object)) {
        return CFBooleanGetValue(value) != 0;
    }
    if (const auto number = real(object)) {
        return *number != 0;
    }
    return std::nullopt;
}

std::optional<std::int32_t> int32(CFTypeRef object) {
    return whole<std::int32_t>(object, kCFNumberSInt32Type);
}

std::optional<std::int64_t> int64(CFTypeRef object) {
    return whole<std::int64_t>(object, kCFNumberSInt64Type);
}

std::optional<double> real(CFTypeRef object) {
    const auto number = castTo<CFNumberRef>(object);
    double value = 0;
    if (number == nullptr || CFNumberGetValue(number, kCFNumberDoubleType, &value) == 0) {
        return std::nullopt;
    }
    return value;
}

std::optional<WindowId> windowId(CFTypeRef object) {
    const auto number = int64(object);
    if (!number || *number < 0 || *number > std::numeric_limits<WindowId>::max()) {
        return std::nullopt;
    }
    return static_cast<WindowId>(*number);
}

std::optional<Rect> rect(CFTypeRef object) {
    const auto dictionary = castTo<CFDictionaryRef>(object);
    CGRect rectangle{};
    if (dictionary == nullptr || !CGRectMakeWithDictionaryRepresentation(dictionary, &rectangle)) {
        return std::nullopt;
    }
    return Rect{rectangle.origin.x, rectangle.origin.y, rectangle.size.width, rectangle.size.height};
}

std::optional<Point> point(CFTypeRef object) {
    const auto value = castTo<AXValueRef>(object);
    CGPoint place{};
    if (value == nullptr || AXValueGetValue(value, kAXValueTypeCGPoint, &place) == 0) {
        return std::nullopt;
    }
    return Point{place.x, place.y};
}

std::optional<Size> size(CFTypeRef object) {
    const auto value = castTo<AXValueRef>(object);
    CGSize extent{};
    if (value == nullptr || AXValueGetValue(value, kAXValueTypeCGSize, &extent) == 0) {
        return std::nullopt;
    }
    return Size{extent.width, extent.height};
}

Owned<CFStringRef> makeString(std::string_view text) {
    return Owned<CFStringRef>(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
                                                      static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false));
}

Owned<CFArrayRef> makeArray(std::vector<CFTypeRef> values) {
    return Owned<CFArrayRef>(
        CFArrayCreate(kCFAllocatorDefault, values.data(), static_cast<CFIndex>(values.size()), &kCFTypeArrayCallBacks));
}

std::vector<CFTypeRef> valuesOf(CFArrayRef array) {
    const CFIndex count = CFArrayGetCount(array);
    std::vector<CFTypeRef> values;
    values.reserve(static_cast<std::size_t>(count));
    for (CFIndex index = 0; index < count; ++index) {
        values.push_back(CFArrayGetValueAtIndex(array, index));
    }
    return values;
}

}  // namespace ferrowyn::cf
