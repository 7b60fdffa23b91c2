#pragma once

namespace ferrowyn {

struct Platform;

/// Whether the same installed program runs in another process. Always false for a program that is not installed.
[[nodiscard]] bool isRunningElsewhere(const Platform& platform);

}  // namespace ferrowyn
