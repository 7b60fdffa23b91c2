// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFBase.h>

typedef uint32_t CGWindowID;
#define kCGNullWindowID ((CGWindowID)0)

CF_OPTIONS(uint32_t, CGWindowListOption){
    kCGWindowListOptionAll = 0,
    kCGWindowListOptionOnScreenOnly = (1 << 0),
    kCGWindowListExcludeDesktopElements = (1 << 4),
};

CF_EXPORT const CFStringRef _Nonnull kCGWindowAlpha;
CF_EXPORT const CFStringRef _Nonnull kCGWindowBounds;
CF_EXPORT const CFStringRef _Nonnull kCGWindowIsOnscreen;
CF_EXPORT const CFStringRef _Nonnull kCGWindowLayer;
CF_EXPORT const CFStringRef _Nonnull kCGWindowNumber;
CF_EXPORT const CFStringRef _Nonnull kCGWindowOwnerName;
CF_EXPORT const CFStringRef _Nonnull kCGWindowOwnerPID;

CF_EXPORT CFArrayRef _Nullable CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow)
    CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
