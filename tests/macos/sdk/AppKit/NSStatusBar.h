// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSControls.h>
#include <AppKit/NSMenu.h>

NS_ASSUME_NONNULL_BEGIN

static const CGFloat NSVariableStatusItemLength = -1.0;

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property CGFloat length;
@property(nullable, strong) NSMenu* menu;
@property(nullable, readonly, strong) NSStatusBarButton* button;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length NS_WARN_UNUSED_RESULT;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

NS_ASSUME_NONNULL_END
