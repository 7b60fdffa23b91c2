#pragma once

#include <cstdint>

namespace ferrowyn {

/// The window server's number of a window; the identity of a window throughout the program.
using WindowId = std::uint32_t;

/// A process identifier, by which the logic knows an application. Positive for a real process; adapters may hand out
/// other values for window owners whose process the desktop does not tell, and where an application is not a process
/// (the logic only compares them).
using Pid = std::int32_t;

}  // namespace ferrowyn
