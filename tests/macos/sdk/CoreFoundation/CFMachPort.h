// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFRunLoop.h>

typedef struct __CFMachPort* CFMachPortRef;

CF_EXPORT CFRunLoopSourceRef _Nullable CFMachPortCreateRunLoopSource(CFAllocatorRef _Nullable allocator,
                                                                     CFMachPortRef _Nonnull port, CFIndex order)
    CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT void CFMachPortInvalidate(CFMachPortRef _Nonnull port);
