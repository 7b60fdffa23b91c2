#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/app_window.h"

namespace ferrowyn {

/// Tells two window lists apart, by their windows and by their order. Compared within one run only.
struct WindowFingerprint {
    std::int64_t count = 0;
    std::int64_t hash = 0;

    /// Of the window server's numbers, front-most first, an entry without a number as nothing; both fields are 0 when
    /// the server did not answer.
    [[nodiscard]] static WindowFingerprint of(const std::optional<std::vector<std::optional<WindowId>>>& windowOrder);

    friend bool operator==(const WindowFingerprint&, const WindowFingerprint&) = default;
};

}  // namespace ferrowyn
