#pragma once

namespace ferrowyn {

struct Platform;

/// Whether the same installed program runs in another process. A program that is not installed as one is never found.
[[nodiscard]] bool isRunningElsewhere(const Platform& platform);

}  // namespace ferrowyn
