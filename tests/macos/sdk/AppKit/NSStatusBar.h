// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
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
