// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>

typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFNumber* CFNumberRef;

CF_EXPORT const CFBooleanRef _Nonnull kCFBooleanTrue;
CF_EXPORT const CFBooleanRef _Nonnull kCFBooleanFalse;

CF_ENUM(CFIndex, CFNumberType){
    kCFNumberSInt32Type = 3,
    kCFNumberSInt64Type = 4,
    kCFNumberDoubleType = 13,
};

CF_EXPORT CFTypeID CFBooleanGetTypeID(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT Boolean CFBooleanGetValue(CFBooleanRef _Nonnull boolean) CF_WARN_UNUSED_RESULT;
CF_EXPORT CFTypeID CFNumberGetTypeID(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT Boolean CFNumberIsFloatType(CFNumberRef _Nonnull number) CF_WARN_UNUSED_RESULT;
/// False when the number does not fit the type without a loss.
CF_EXPORT Boolean CFNumberGetValue(CFNumberRef _Nonnull number, CFNumberType type,
                                   void* _Nonnull value) CF_WARN_UNUSED_RESULT;
