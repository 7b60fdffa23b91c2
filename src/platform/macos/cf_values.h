#pragma once

#include <ApplicationServices/ApplicationServices.h>
#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"

namespace ferrowyn {

/// Owns one reference of a Core Foundation object, or none. Any thread.
template <typename Ref>
class Owned {
public:
    Owned() = default;
    /// Takes over what a Create or Copy function returned; null when it returned nothing.
    explicit Owned(Ref adopted) : object_(adopted) {}
    /// Adds a reference to an object that has another owner.
    [[nodiscard]] static Owned retaining(Ref object) {
        if (object != nullptr) {
            CFRetain(object);
        }
        return Owned(object);
    }

    Owned(Owned&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) {
            reset();
            object_ = std::exchange(other.object_, nullptr);
        }
        return *this;
    }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    ~Owned() { reset(); }

    void reset() {
        if (const Ref object = std::exchange(object_, nullptr)) {
            CFRelease(object);
        }
    }

    [[nodiscard]] Ref get() const { return object_; }
    [[nodiscard]] explicit operator bool() const { return object_ != nullptr; }

private:
    Ref object_ = nullptr;
};

/// The type identifier of a Core Foundation type; specialised for each type that comes from another process.
template <typename Ref>
CFTypeID cfTypeId();

template <>
inline CFTypeID cfTypeId<CFStringRef>() {
    return CFStringGetTypeID();
}
template <>
inline CFTypeID cfTypeId<CFNumberRef>() {
    return CFNumberGetTypeID();
}
template <>
inline CFTypeID cfTypeId<CFBooleanRef>() {
    return CFBooleanGetTypeID();
}
template <>
inline CFTypeID cfTypeId<CFArrayRef>() {
    return CFArrayGetTypeID();
}
template <>
inline CFTypeID cfTypeId<CFDictionaryRef>() {
    return CFDictionaryGetTypeID();
}
template <>
inline CFTypeID cfTypeId<AXValueRef>() {
    return AXValueGetTypeID();
}
template <>
inline CFTypeID cfTypeId<AXUIElementRef>() {
    return AXUIElementGetTypeID();
}

/// The object as the type that it is; null when it is absent or of another type. Values from another process may have
/// any type.
template <typename Ref>
[[nodiscard]] Ref castTo(CFTypeRef object) {
    return object != nullptr && CFGetTypeID(object) == cfTypeId<Ref>() ? static_cast<Ref>(object) : nullptr;
}

}  // namespace ferrowyn

/// Between Core Foundation's values and ours. A value that is absent, of another type or out of range becomes absent.
/// Pure functions; any thread.
namespace ferrowyn::cf {

/// As UTF-8; half a surrogate pair becomes "?".
[[nodiscard]] std::optional<std::string> string(CFTypeRef object);
/// Also from a number, where 0 is false.
[[nodiscard]] std::optional<bool> boolean(CFTypeRef object);
[[nodiscard]] std::optional<std::int32_t> int32(CFTypeRef object);
[[nodiscard]] std::optional<std::int64_t> int64(CFTypeRef object);
[[nodiscard]] std::optional<double> real(CFTypeRef object);
/// From a whole number that fits into 32 bits.
[[nodiscard]] std::optional<WindowId> windowId(CFTypeRef object);
/// From a dictionary, as the window server sends rectangles.
[[nodiscard]] std::optional<Rect> rect(CFTypeRef object);
/// From an Accessibility value.
[[nodiscard]] std::optional<Point> point(CFTypeRef object);
[[nodiscard]] std::optional<Size> size(CFTypeRef object);

/// Null when the text is not well-formed UTF-8.
[[nodiscard]] Owned<CFStringRef> makeString(std::string_view text);
[[nodiscard]] Owned<CFArrayRef> makeArray(std::vector<CFTypeRef> values);

/// The array's values, borrowed: they live as long as the array does.
[[nodiscard]] std::vector<CFTypeRef> valuesOf(CFArrayRef array);

}  // namespace ferrowyn::cf
