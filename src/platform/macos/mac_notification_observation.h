#pragma once

#import <Foundation/Foundation.h>

#include <functional>

#include "core/published.h"

namespace ferrowyn {

/// Calls the handler on the main thread for each notification of this name, until the token is dropped.
[[nodiscard]] Subscription observeNotification(NSNotificationCenter* _Nonnull center, NSNotificationName _Nonnull name,
                                               std::function<void(NSNotification* _Nonnull)> handler);

}  // namespace ferrowyn
