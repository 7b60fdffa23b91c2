#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"
#include "platform/macos/owned.h"

/// Between Core Foundation's values and ours. A value that is absent, of another type or out of range is nothing. Pure
/// functions; any thread.
namespace ferrowyn::cf {

/// As UTF-8; what is no text, such as half a surrogate pair, becomes "?".
[[nodiscard]] std::optional<std::string> string(CFTypeRef object);
/// A number counts by its Boolean value.
[[nodiscard]] std::optional<bool> boolean(CFTypeRef object);
[[nodiscard]] std::optional<std::int32_t> int32(CFTypeRef object);
[[nodiscard]] std::optional<std::int64_t> int64(CFTypeRef object);
[[nodiscard]] std::optional<double> real(CFTypeRef object);
/// A whole number that an unsigned 32-bit integer can hold.
[[nodiscard]] std::optional<WindowId> windowId(CFTypeRef object);
/// From the dictionary that a rectangle is sent as.
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
