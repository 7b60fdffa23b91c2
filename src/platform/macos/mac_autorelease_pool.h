#pragma once

#include <functional>

namespace ferrowyn {

/// Does the work, after which nothing is left of what it has autoreleased: a thread that the system did not make for
/// its own objects has no pool. Any thread.
void inAutoreleasePool(const std::function<void()>& work);

}  // namespace ferrowyn
