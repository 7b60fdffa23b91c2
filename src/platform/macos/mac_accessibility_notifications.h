#pragma once

#include <functional>

#include "core/published.h"

namespace ferrowyn {

/// Told on the main thread when the system says to everybody that its Accessibility database has changed. It may say so
/// before the change can be read.
[[nodiscard]] Subscription observeAccessibilityDatabase(std::function<void()> handler);

}  // namespace ferrowyn
