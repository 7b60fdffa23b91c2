#pragma once

#include "platform/macos/mac_application_delegate.h"

namespace ferrowyn {

class AppDelegate;

/// Passes on what the system tells to the delegate of the program, while there is one. The system can tell before there
/// is, and after, and it tells of the end more than once: the launch happens once, the end is always the same. The
/// pointer outlives what is returned.
[[nodiscard]] MacApplicationEvents passingOnTo(AppDelegate* const& delegate);

}  // namespace ferrowyn
