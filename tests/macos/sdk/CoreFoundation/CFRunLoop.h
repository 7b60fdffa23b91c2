// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>

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
