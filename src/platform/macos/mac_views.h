#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>

namespace ferrowyn {

// The toolkit hands views over as numbers, their addresses.

[[nodiscard]] inline std::uintptr_t addressOf(NSView* _Nullable view) {
    NSView* __unsafe_unretained unowned = view;
    return __builtin_bit_cast(std::uintptr_t, unowned);
}

/// The view lives.
[[nodiscard]] inline NSView* _Nullable viewAt(std::uintptr_t address) {
    return __builtin_bit_cast(NSView * __unsafe_unretained, address);
}

}  // namespace ferrowyn
