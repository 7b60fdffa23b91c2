#include "platform/macos/mac_accessibility_notifications.h"

#import <Foundation/Foundation.h>

#include <utility>

/// The distributed centre takes targets only, no blocks.
@interface FerrowynAccessibilityDatabaseTarget : NSObject
- (instancetype)initWithHandler:(std::function<void()>)handler;
- (void)accessibilityDatabaseChanged:(NSNotification*)notification;
@end

@implementation FerrowynAccessibilityDatabaseTarget {
    std::function<void()> _handler;
}

- (instancetype)initWithHandler:(std::function<void()>)handler {
    self = [super init];
    if (self != nil) {
        _handler = std::move(handler);
    }
    return self;
}

- (void)accessibilityDatabaseChanged:(NSNotification*)notification {
    static_cast<void>(notification);
    _handler();
}

@end

namespace ferrowyn {

Subscription observeAccessibilityDatabase(std::function<void()> handler) {
    auto* const target = [[FerrowynAccessibilityDatabaseTarget alloc] initWithHandler:std::move(handler)];
    auto* const center = [NSDistributedNotificationCenter defaultCenter];
    [center addObserver:target
               selector:@selector(accessibilityDatabaseChanged:)
                   name:@"com.apple.accessibility.api"
                 object:nil];
    // The centre does not retain its targets.
    return Subscription([center, target] { [center removeObserver:target]; });
}

}  // namespace ferrowyn
