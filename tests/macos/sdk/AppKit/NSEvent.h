// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSEventType) {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeRightMouseDown = 3,
    NSEventTypeMouseMoved = 5,
    NSEventTypeMouseExited = 9,
    NSEventTypeOtherMouseDown = 25,
};

typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskLeftMouseDown = 1ULL << NSEventTypeLeftMouseDown,
    NSEventMaskRightMouseDown = 1ULL << NSEventTypeRightMouseDown,
    NSEventMaskOtherMouseDown = 1ULL << NSEventTypeOtherMouseDown,
};

@interface NSEvent : NSObject
@property(readonly) NSEventType type;
@property(readonly) NSPoint locationInWindow;
@property(class, readonly) NSPoint mouseLocation;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:(void (^)(NSEvent* event))block NS_WARN_UNUSED_RESULT;
+ (void)removeMonitor:(id)eventMonitor;
@end

NS_ASSUME_NONNULL_END
