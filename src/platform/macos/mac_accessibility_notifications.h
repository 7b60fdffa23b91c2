#pragma once

#include <functional>

#include "core/published.h"

namespace ferrowyn {

/// Calls the handler on the main thread when the system announces a change of its Accessibility database, which may be
/// before the change can be read.
[[nodiscard]] Subscription observeAccessibilityDatabase(std::function<void()> handler);

}  // namespace ferrowyn
