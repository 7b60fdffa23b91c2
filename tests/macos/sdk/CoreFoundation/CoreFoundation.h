// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <FerrowynChecksOnly.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#if defined(__cplusplus)
#define CF_EXPORT extern "C"
#else
#define CF_EXPORT extern
#endif

#if __has_feature(nullability)
#define CF_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define CF_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#endif

/// The result belongs to the caller.
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))
#define CF_RETURNS_NOT_RETAINED __attribute__((cf_returns_not_retained))
#define CF_RELEASES_ARGUMENT __attribute__((cf_consumed))
/// Stricter than Apple's: a result that nobody looks at is a defect here.
#define CF_WARN_UNUSED_RESULT __attribute__((warn_unused_result))

#define CF_ENUM(_type, _name) \
    enum _name : _type;       \
    typedef enum _name _name; \
    enum _name : _type
/// An integer with named bits: the bits combine without a cast, as they do in C++ with Apple's headers.
#define CF_OPTIONS(_type, _name) \
    typedef _type _name;         \
    enum : _type

typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef signed int SInt32;
typedef unsigned int UInt32;
typedef unsigned short UInt16;
typedef signed long long SInt64;
typedef UInt16 UniChar;
typedef unsigned long UniCharCount;

typedef signed long CFIndex;
typedef unsigned long CFHashCode;
typedef unsigned long CFTypeID;
typedef double CFTimeInterval;
typedef const void* CFTypeRef;

typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFString* CFStringRef;

typedef struct {
    CFIndex location;
    CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    CFRange range = {location, length};
    return range;
}

CF_EXPORT const CFAllocatorRef _Null_unspecified kCFAllocatorDefault;

CF_EXPORT CFTypeRef _Nonnull CFRetain(CFTypeRef _Nonnull object);
CF_EXPORT void CFRelease(CFTypeRef _Nonnull object CF_RELEASES_ARGUMENT);
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef _Nonnull object) CF_WARN_UNUSED_RESULT;
CF_EXPORT Boolean CFEqual(CFTypeRef _Nonnull first, CFTypeRef _Nonnull second) CF_WARN_UNUSED_RESULT;
CF_EXPORT CFHashCode CFHash(CFTypeRef _Nonnull object) CF_WARN_UNUSED_RESULT;

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

typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef CFStringRef CFRunLoopMode;

CF_ENUM(SInt32, CFRunLoopRunResult){
    kCFRunLoopRunFinished = 1,
    kCFRunLoopRunStopped = 2,
    kCFRunLoopRunTimedOut = 3,
    kCFRunLoopRunHandledSource = 4,
};

CF_EXPORT const CFRunLoopMode _Nonnull kCFRunLoopDefaultMode;
CF_EXPORT const CFRunLoopMode _Nonnull kCFRunLoopCommonModes;

CF_EXPORT CFRunLoopRef _Nonnull CFRunLoopGetCurrent(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT CFRunLoopRef _Nonnull CFRunLoopGetMain(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode _Nonnull mode, CFTimeInterval seconds,
                                                Boolean returnAfterSourceHandled) CF_WARN_UNUSED_RESULT;
CF_EXPORT void CFRunLoopStop(CFRunLoopRef _Nonnull loop);
CF_EXPORT void CFRunLoopAddSource(CFRunLoopRef _Nonnull loop, CFRunLoopSourceRef _Nonnull source,
                                  CFRunLoopMode _Nonnull mode);
CF_EXPORT void CFRunLoopRemoveSource(CFRunLoopRef _Nonnull loop, CFRunLoopSourceRef _Nonnull source,
                                     CFRunLoopMode _Nonnull mode);

typedef struct __CFMachPort* CFMachPortRef;

CF_EXPORT CFRunLoopSourceRef _Nullable CFMachPortCreateRunLoopSource(CFAllocatorRef _Nullable allocator,
                                                                     CFMachPortRef _Nonnull port, CFIndex order)
    CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT void CFMachPortInvalidate(CFMachPortRef _Nonnull port);

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

typedef UInt32 CFStringEncoding;

CF_ENUM(CFStringEncoding, CFStringBuiltInEncodings){
    kCFStringEncodingUTF8 = 0x08000100,
};

#if defined(__CONSTANT_CFSTRINGS__) && defined(__APPLE__)
#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))
#else
#define CFSTR(text) __CFStringMakeConstantString("" text "")
#endif
/// Never called by name: `CFSTR` is, and its strings live for ever.
CF_EXPORT CFStringRef _Nonnull __CFStringMakeConstantString(const char* _Nonnull text) CF_RETURNS_NOT_RETAINED;

CF_EXPORT CFTypeID CFStringGetTypeID(void) CF_WARN_UNUSED_RESULT;
/// Null when the bytes are not well formed in the encoding.
CF_EXPORT CFStringRef _Nullable CFStringCreateWithBytes(
    CFAllocatorRef _Nullable allocator, const UInt8* _Nonnull bytes, CFIndex count, CFStringEncoding encoding,
    Boolean isExternalRepresentation) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
/// In UTF-16 units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef _Nonnull string) CF_WARN_UNUSED_RESULT;
/// How many UTF-16 units were converted; with no buffer it only counts the bytes.
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef _Nonnull string, CFRange range, CFStringEncoding encoding,
                                   UInt8 lossByte, Boolean isExternalRepresentation, UInt8* _Nullable buffer,
                                   CFIndex bufferSize, CFIndex* _Nullable usedSize);
