// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef struct __CGEvent* CGEventRef;
typedef struct __CGEventTapProxy* CGEventTapProxy;

CF_OPTIONS(uint64_t, CGEventFlags){
    kCGEventFlagMaskShift = 0x00020000,
    kCGEventFlagMaskControl = 0x00040000,
    kCGEventFlagMaskAlternate = 0x00080000,
    kCGEventFlagMaskCommand = 0x00100000,
};

CF_ENUM(uint32_t, CGEventType){
    kCGEventKeyDown = 10,
    kCGEventKeyUp = 11,
    kCGEventFlagsChanged = 12,
    kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
    kCGEventTapDisabledByUserInput = 0xFFFFFFFF,
};

CF_ENUM(uint32_t, CGEventField){
    kCGKeyboardEventAutorepeat = 8,
    kCGKeyboardEventKeycode = 9,
};

CF_ENUM(uint32_t, CGEventTapLocation){
    kCGHIDEventTap = 0,
    kCGSessionEventTap = 1,
    kCGAnnotatedSessionEventTap = 2,
};

CF_ENUM(uint32_t, CGEventTapPlacement){
    kCGHeadInsertEventTap = 0,
    kCGTailAppendEventTap = 1,
};

CF_ENUM(uint32_t, CGEventTapOptions){
    kCGEventTapOptionDefault = 0,
    kCGEventTapOptionListenOnly = 1,
};

typedef uint16_t CGKeyCode;
typedef struct CGEventSource* CGEventSourceRef;

typedef uint64_t CGEventMask;
#define CGEventMaskBit(eventType) ((CGEventMask)1 << (eventType))

/// Returns the event to let it through, nothing to swallow it. The event stays the system's.
typedef CGEventRef _Nullable (*CGEventTapCallBack)(CGEventTapProxy _Nonnull proxy, CGEventType type,
                                                   CGEventRef _Nonnull event, void* _Nullable userInfo);

CF_EXPORT CFMachPortRef _Nullable CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place,
                                                   CGEventTapOptions options, CGEventMask eventsOfInterest,
                                                   CGEventTapCallBack _Nonnull callback,
                                                   void* _Nullable userInfo) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT void CGEventTapEnable(CFMachPortRef _Nonnull tap, bool enable);
CF_EXPORT bool CGEventTapIsEnabled(CFMachPortRef _Nonnull tap) CF_WARN_UNUSED_RESULT;

CF_EXPORT CGEventRef _Nullable CGEventCreateKeyboardEvent(CGEventSourceRef _Nullable source, CGKeyCode virtualKey,
                                                          bool keyDown) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT CGEventRef _Nullable CGEventCreateCopy(CGEventRef _Nullable event) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT CGEventFlags CGEventGetFlags(CGEventRef _Nullable event) CF_WARN_UNUSED_RESULT;
CF_EXPORT void CGEventSetFlags(CGEventRef _Nullable event, CGEventFlags flags);
CF_EXPORT int64_t CGEventGetIntegerValueField(CGEventRef _Nullable event, CGEventField field) CF_WARN_UNUSED_RESULT;
/// With no room it only tells the length.
CF_EXPORT void CGEventKeyboardGetUnicodeString(CGEventRef _Nullable event, UniCharCount maxStringLength,
                                               UniCharCount* _Nullable actualStringLength,
                                               UniChar* _Nullable unicodeString);

typedef double CGFloat;

typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;

typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;

typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;

/// False, and the rectangle untouched, when the dictionary describes none.
CF_EXPORT bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef _Nullable dictionary,
                                                      CGRect* _Nullable rectangle) CF_WARN_UNUSED_RESULT;

typedef uint32_t CGWindowID;
#define kCGNullWindowID ((CGWindowID)0)

CF_OPTIONS(uint32_t, CGWindowListOption){
    kCGWindowListOptionAll = 0,
    kCGWindowListOptionOnScreenOnly = (1 << 0),
    kCGWindowListExcludeDesktopElements = (1 << 4),
};

CF_EXPORT const CFStringRef _Nonnull kCGWindowAlpha;
CF_EXPORT const CFStringRef _Nonnull kCGWindowBounds;
CF_EXPORT const CFStringRef _Nonnull kCGWindowIsOnscreen;
CF_EXPORT const CFStringRef _Nonnull kCGWindowLayer;
CF_EXPORT const CFStringRef _Nonnull kCGWindowNumber;
CF_EXPORT const CFStringRef _Nonnull kCGWindowOwnerName;
CF_EXPORT const CFStringRef _Nonnull kCGWindowOwnerPID;

CF_EXPORT CFArrayRef _Nullable CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow)
    CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
