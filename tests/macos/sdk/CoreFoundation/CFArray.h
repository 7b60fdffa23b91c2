// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>

typedef const struct __CFArray* CFArrayRef;

typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* first, const void* second);
} CFArrayCallBacks;

CF_EXPORT const CFArrayCallBacks kCFTypeArrayCallBacks;

CF_EXPORT CFTypeID CFArrayGetTypeID(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT CFArrayRef _Null_unspecified CFArrayCreate(
    CFAllocatorRef _Nullable allocator, const void* _Nonnull* _Nonnull values, CFIndex count,
    const CFArrayCallBacks* _Nonnull callBacks) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef _Nonnull array) CF_WARN_UNUSED_RESULT;
CF_EXPORT const void* _Null_unspecified CFArrayGetValueAtIndex(CFArrayRef _Nonnull array,
                                                               CFIndex index) CF_WARN_UNUSED_RESULT;
