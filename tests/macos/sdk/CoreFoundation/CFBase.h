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
