// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSEvent.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSResponder : NSObject
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseEntered:(NSEvent*)event;
- (void)mouseMoved:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
@end

NS_ASSUME_NONNULL_END
