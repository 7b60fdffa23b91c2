// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>

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
