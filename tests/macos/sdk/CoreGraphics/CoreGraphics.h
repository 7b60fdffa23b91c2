// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_STRICT_BEGIN

typedef double CGFloat;
typedef struct CGPoint {
    CGFloat x, y;
} CGPoint;
typedef struct CGSize {
    CGFloat width, height;
} CGSize;
typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;

/// False, and the rectangle untouched, when the dictionary describes none.
bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef _Nullable dictionary, CGRect* _Nullable rectangle);

typedef struct __CGEvent* CGEventRef;
typedef struct __CGEventTapProxy* CGEventTapProxy;
typedef struct CGEventSource* CGEventSourceRef;
typedef uint16_t CGKeyCode;
typedef uint64_t CGEventMask;
#define CGEventMaskBit(eventType) ((CGEventMask)1 << (eventType))

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

CF_ENUM(uint32_t, CGEventField){kCGKeyboardEventAutorepeat = 8, kCGKeyboardEventKeycode = 9};
CF_ENUM(uint32_t, CGEventTapLocation){kCGHIDEventTap = 0, kCGSessionEventTap = 1};
CF_ENUM(uint32_t, CGEventTapPlacement){kCGHeadInsertEventTap = 0, kCGTailAppendEventTap = 1};
CF_ENUM(uint32_t, CGEventTapOptions){kCGEventTapOptionDefault = 0, kCGEventTapOptionListenOnly = 1};

/// Returns the event to let it through, nothing to swallow it. The event stays the system's.
typedef CGEventRef _Nullable (*CGEventTapCallBack)(CGEventTapProxy proxy, CGEventType type, CGEventRef event,
                                                   void* _Nullable userInfo);

CFMachPortRef _Nullable CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place, CGEventTapOptions options,
                                         CGEventMask eventsOfInterest, CGEventTapCallBack callback,
                                         void* _Nullable userInfo) CF_RETURNS_RETAINED;
void CGEventTapEnable(CFMachPortRef tap, bool enable);
bool CGEventTapIsEnabled(CFMachPortRef tap);

CGEventRef _Nullable CGEventCreateKeyboardEvent(CGEventSourceRef _Nullable source, CGKeyCode virtualKey,
                                                bool keyDown) CF_RETURNS_RETAINED;
CGEventRef _Nullable CGEventCreateCopy(CGEventRef _Nullable event) CF_RETURNS_RETAINED;
CGEventFlags CGEventGetFlags(CGEventRef _Nullable event);
void CGEventSetFlags(CGEventRef _Nullable event, CGEventFlags flags);
int64_t CGEventGetIntegerValueField(CGEventRef _Nullable event, CGEventField field);
/// With no room it only tells the length.
void CGEventKeyboardGetUnicodeString(CGEventRef _Nullable event, UniCharCount maxStringLength,
                                     UniCharCount* _Nullable actualStringLength, UniChar* _Nullable unicodeString);

typedef uint32_t CGWindowID;
#define kCGNullWindowID ((CGWindowID)0)

CF_OPTIONS(uint32_t, CGWindowListOption){
    kCGWindowListOptionOnScreenOnly = (1 << 0),
    kCGWindowListExcludeDesktopElements = (1 << 4),
};

extern const CFStringRef kCGWindowAlpha, kCGWindowBounds, kCGWindowIsOnscreen, kCGWindowLayer, kCGWindowNumber,
    kCGWindowOwnerName, kCGWindowOwnerPID;

CFArrayRef _Nullable CGWindowListCopyWindowInfo(CGWindowListOption option,
                                                CGWindowID relativeToWindow) CF_RETURNS_RETAINED;

CF_STRICT_END
