// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <FerrowynChecksOnly.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#define CF_EXPORT extern "C"

/// The result belongs to the caller.
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))
#define CF_RETURNS_NOT_RETAINED __attribute__((cf_returns_not_retained))
#define CF_RELEASES_ARGUMENT __attribute__((cf_consumed))
/// Between these two no reference is null unless it says so. Stricter than Apple's: a result that nobody looks at is a
/// defect here.
#define CF_STRICT_BEGIN                            \
    _Pragma("clang assume_nonnull begin") _Pragma( \
        "clang attribute push(__attribute__((warn_unused_result)), apply_to = hasType(functionType))") extern "C" {
#define CF_STRICT_END \
    }                 \
    _Pragma("clang attribute pop") _Pragma("clang assume_nonnull end")

#define CF_ENUM(_type, _name) \
    enum _name : _type;       \
    typedef enum _name _name; \
    enum _name : _type
/// An integer with named bits: the bits combine without a cast, as they do in C++ with Apple's headers.
#define CF_OPTIONS(_type, _name) \
    typedef _type _name;         \
    enum : _type

typedef unsigned char Boolean, UInt8;
typedef signed int SInt32;
typedef unsigned int UInt32;
typedef unsigned short UInt16, UniChar;
typedef signed long CFIndex;
typedef unsigned long UniCharCount, CFHashCode, CFTypeID;
typedef double CFTimeInterval;

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct __CFArray* CFArrayRef;
typedef const struct __CFBoolean* CFBooleanRef;
typedef const struct __CFDictionary* CFDictionaryRef;
typedef const struct __CFNumber* CFNumberRef;
typedef const struct __CFString* CFStringRef;
typedef struct __CFMachPort* CFMachPortRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef CFStringRef CFRunLoopMode;

typedef UInt32 CFStringEncoding;
enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };

typedef struct {
    CFIndex location, length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
    return {location, length};
}

typedef struct {
    CFIndex version;
    const void* (*retain)(CFAllocatorRef allocator, const void* value);
    void (*release)(CFAllocatorRef allocator, const void* value);
    CFStringRef (*copyDescription)(const void* value);
    Boolean (*equal)(const void* first, const void* second);
} CFArrayCallBacks;

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

CF_EXPORT CFTypeRef _Nonnull CFRetain(CFTypeRef _Nonnull object);
/// How many UTF-16 units were converted; with no buffer it only counts the bytes.
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef _Nonnull string, CFRange range, CFStringEncoding encoding,
                                   UInt8 lossByte, Boolean isExternalRepresentation, UInt8* _Nullable buffer,
                                   CFIndex bufferSize, CFIndex* _Nullable usedSize);

CF_STRICT_BEGIN

extern const CFAllocatorRef _Null_unspecified kCFAllocatorDefault;
extern const CFArrayCallBacks kCFTypeArrayCallBacks;
extern const CFBooleanRef kCFBooleanTrue, kCFBooleanFalse;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

void CFRelease(CFTypeRef object CF_RELEASES_ARGUMENT);
CFTypeID CFGetTypeID(CFTypeRef object);
Boolean CFEqual(CFTypeRef first, CFTypeRef second);
CFHashCode CFHash(CFTypeRef object);

CFTypeID CFArrayGetTypeID(void);
CFArrayRef _Null_unspecified CFArrayCreate(CFAllocatorRef _Nullable allocator, const void* _Nonnull* _Nonnull values,
                                           CFIndex count, const CFArrayCallBacks* callBacks) CF_RETURNS_RETAINED;
CFIndex CFArrayGetCount(CFArrayRef array);
const void* _Null_unspecified CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

CFTypeID CFDictionaryGetTypeID(void);
CFDictionaryRef _Null_unspecified CFDictionaryCreate(
    CFAllocatorRef _Nullable allocator, const void* _Nonnull* _Nonnull keys, const void* _Nonnull* _Nonnull values,
    CFIndex count, const CFDictionaryKeyCallBacks* keyCallBacks,
    const CFDictionaryValueCallBacks* valueCallBacks) CF_RETURNS_RETAINED;
const void* _Nullable CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);

CF_ENUM(SInt32, CFRunLoopRunResult){kCFRunLoopRunFinished = 1, kCFRunLoopRunStopped = 2, kCFRunLoopRunTimedOut = 3};
extern const CFRunLoopMode kCFRunLoopDefaultMode, kCFRunLoopCommonModes;

CFRunLoopRef CFRunLoopGetCurrent(void);
CFRunLoopRef CFRunLoopGetMain(void);
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean returnAfterSourceHandled);
void CFRunLoopStop(CFRunLoopRef loop);
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
CFRunLoopSourceRef _Nullable CFMachPortCreateRunLoopSource(CFAllocatorRef _Nullable allocator, CFMachPortRef port,
                                                           CFIndex order) CF_RETURNS_RETAINED;
void CFMachPortInvalidate(CFMachPortRef port);

CF_ENUM(CFIndex, CFNumberType){kCFNumberSInt32Type = 3, kCFNumberSInt64Type = 4, kCFNumberDoubleType = 13};

CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);
CFTypeID CFNumberGetTypeID(void);
Boolean CFNumberIsFloatType(CFNumberRef number);
/// False when the number does not fit the type without a loss.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

#if defined(__CONSTANT_CFSTRINGS__) && defined(__APPLE__)
#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))
#else
#define CFSTR(text) __CFStringMakeConstantString("" text "")
#endif
/// Never called by name: `CFSTR` is, and its strings live for ever.
CFStringRef __CFStringMakeConstantString(const char* text) CF_RETURNS_NOT_RETAINED;

CFTypeID CFStringGetTypeID(void);
/// Null when the bytes are not well formed in the encoding.
CFStringRef _Nullable CFStringCreateWithBytes(CFAllocatorRef _Nullable allocator, const UInt8* bytes, CFIndex count,
                                              CFStringEncoding encoding,
                                              Boolean isExternalRepresentation) CF_RETURNS_RETAINED;
/// In UTF-16 units.
CFIndex CFStringGetLength(CFStringRef string);

CF_STRICT_END
