#pragma once

#include <ApplicationServices/ApplicationServices.h>

namespace ferrowyn {

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

/// The object as the type that it is; null when it is absent or of another type. What another process sends is never
/// taken at its word.
template <typename Ref>
[[nodiscard]] Ref castTo(CFTypeRef object) {
    return object != nullptr && CFGetTypeID(object) == cfTypeId<Ref>() ? static_cast<Ref>(object) : nullptr;
}

}  // namespace ferrowyn
