#include "platform/macos/mac_application_delegate.h"

#import <AppKit/AppKit.h>

#include <utility>

@interface FerrowynApplicationDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithEvents:(ferrowyn::MacApplicationEvents)events;
/// Nothing is told any more: the toolkit may hold the delegate for longer than what it tells.
- (void)forgetEvents;
@end

@implementation FerrowynApplicationDelegate {
    ferrowyn::MacApplicationEvents _events;
}

- (instancetype)initWithEvents:(ferrowyn::MacApplicationEvents)events {
    self = [super init];
    if (self != nil) {
        _events = std::move(events);
    }
    return self;
}

- (void)forgetEvents {
    _events = {};
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    static_cast<void>(notification);
    if (_events.onDidFinishLaunching) {
        _events.onDidFinishLaunching();
    }
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
    static_cast<void>(sender);
    return _events.onShouldHandleReopen ? _events.onShouldHandleReopen(hasVisibleWindows) : YES;
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    static_cast<void>(notification);
    if (_events.onWillTerminate) {
        _events.onWillTerminate();
    }
}

@end

namespace ferrowyn {

struct MacApplicationDelegate::Parts {
    FerrowynApplicationDelegate* delegate;
};

MacApplicationDelegate::MacApplicationDelegate(MacApplicationEvents events)
    : parts_(new Parts{[[FerrowynApplicationDelegate alloc] initWithEvents:std::move(events)]}) {
    // The application does not hold its delegate.
    NSApplication.sharedApplication.delegate = parts_->delegate;
}

MacApplicationDelegate::~MacApplicationDelegate() {
    [parts_->delegate forgetEvents];
    if (NSApplication.sharedApplication.delegate == parts_->delegate) {
        NSApplication.sharedApplication.delegate = nil;
    }
}

}  // namespace ferrowyn
