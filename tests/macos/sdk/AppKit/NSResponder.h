// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <AppKit/NSEvent.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSResponder : NSObject
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseMoved:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
@end

NS_ASSUME_NONNULL_END
