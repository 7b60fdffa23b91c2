#pragma once

#import <AppKit/AppKit.h>

#include "platform/workspace.h"

namespace ferrowyn {

/// As it is at this moment.
[[nodiscard]] RunningApplication describe(NSRunningApplication* _Nonnull application);

}  // namespace ferrowyn
