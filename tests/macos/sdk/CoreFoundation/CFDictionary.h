// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>

typedef const struct __CFDictionary* CFDictionaryRef;

typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* first, const void* second);
    CFHashCode (*hash)(const void* value);
} CFDictionaryKeyCallBacks;

typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* first, const void* second);
} CFDictionaryValueCallBacks;

CF_EXPORT const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
CF_EXPORT const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CF_EXPORT CFTypeID CFDictionaryGetTypeID(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT CFDictionaryRef _Null_unspecified CFDictionaryCreate(
    CFAllocatorRef _Nullable allocator, const void* _Nonnull* _Nonnull keys, const void* _Nonnull* _Nonnull values,
    CFIndex count, const CFDictionaryKeyCallBacks* _Nonnull keyCallBacks,
    const CFDictionaryValueCallBacks* _Nonnull valueCallBacks) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT const void* _Nullable CFDictionaryGetValue(CFDictionaryRef _Nonnull dictionary,
                                                     const void* _Nonnull key) CF_WARN_UNUSED_RESULT;
