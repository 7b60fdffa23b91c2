#pragma once

#include <functional>

namespace ferrowyn {

/// Calls `work` inside an autorelease pool, which is drained before this returns. A thread that the program started has
/// no pool: without one, what the system's functions autorelease there is not freed. Any thread.
void inAutoreleasePool(const std::function<void()>& work);

}  // namespace ferrowyn
