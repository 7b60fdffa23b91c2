#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/geometry.h"
#include "core/published.h"

namespace ferrowyn {

/// Empty for bytes that are not UTF-8.
[[nodiscard]] inline NSString* _Nonnull nsString(std::string_view text) {
    NSString* const string = [[NSString alloc] initWithBytes:text.data()
                                                      length:text.size()
                                                    encoding:NSUTF8StringEncoding];
    return string == nil ? @"" : string;
}

/// Empty for nil.
[[nodiscard]] inline std::string utf8(NSString* _Nullable text) {
    const char* const bytes = text.UTF8String;
    return bytes == nullptr ? std::string() : std::string(bytes);
}

[[nodiscard]] inline std::optional<std::string> optionalUtf8(NSString* _Nullable text) {
    return text == nil ? std::nullopt : std::optional(utf8(text));
}

/// For a value of a property list, which may have any type: absent when it is not a string.
[[nodiscard]] inline std::optional<std::string> stringOrNothing(id _Nullable value) {
    return [value isKindOfClass:[NSString class]] ? std::optional(utf8(value)) : std::nullopt;
}

// The main screen's lower left corner is the origin and y grows upward, for the system as for `Screens`.

[[nodiscard]] inline Rect fromNSRect(NSRect rect) {
    return {.x = rect.origin.x, .y = rect.origin.y, .width = rect.size.width, .height = rect.size.height};
}

[[nodiscard]] inline NSRect toNSRect(const Rect& rect) {
    return NSMakeRect(rect.x, rect.y, rect.width, rect.height);
}

// The toolkit passes a view as a number, its address.

[[nodiscard]] inline std::uintptr_t addressOf(NSView* _Nullable view) {
    NSView* __unsafe_unretained unowned = view;
    return __builtin_bit_cast(std::uintptr_t, unowned);
}

/// The view must be alive.
[[nodiscard]] inline NSView* _Nullable viewAt(std::uintptr_t address) {
    return __builtin_bit_cast(NSView * __unsafe_unretained, address);
}

/// Calls the handler on the main thread for each notification of this name, until the token is dropped.
[[nodiscard]] Subscription observeNotification(NSNotificationCenter* _Nonnull center, NSNotificationName _Nonnull name,
                                               std::function<void(NSNotification* _Nonnull)> handler);

}  // namespace ferrowyn
