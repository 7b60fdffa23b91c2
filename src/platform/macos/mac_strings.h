#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>

namespace ferrowyn {

/// Empty for bytes that are no UTF-8.
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

/// For a value of a property list, which may have any type.
[[nodiscard]] inline std::optional<std::string> stringOrNothing(id _Nullable value) {
    return [value isKindOfClass:[NSString class]] ? std::optional(utf8(value)) : std::nullopt;
}

}  // namespace ferrowyn
