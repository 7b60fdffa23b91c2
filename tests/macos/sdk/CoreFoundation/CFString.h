// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>

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
