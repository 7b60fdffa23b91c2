// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFArray.h>
#include <CoreFoundation/CFDictionary.h>
#include <CoreFoundation/CFRunLoop.h>
#include <HIServices/AXError.h>

typedef const struct __AXUIElement* AXUIElementRef;
typedef struct __AXObserver* AXObserverRef;

CF_OPTIONS(UInt32, AXCopyMultipleAttributeOptions){
    kAXCopyMultipleAttributeOptionStopOnError = 0x1,
};

typedef void (*AXObserverCallback)(AXObserverRef _Nonnull observer, AXUIElementRef _Nonnull element,
                                   CFStringRef _Nonnull notification, void* _Nullable refcon);

CF_EXPORT const CFStringRef _Nonnull kAXTrustedCheckOptionPrompt;

CF_EXPORT Boolean AXIsProcessTrusted(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef _Nullable options) CF_WARN_UNUSED_RESULT;

CF_EXPORT CFTypeID AXUIElementGetTypeID(void) CF_WARN_UNUSED_RESULT;
CF_EXPORT AXUIElementRef _Nullable AXUIElementCreateApplication(pid_t pid) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT AXError AXUIElementSetMessagingTimeout(AXUIElementRef _Nonnull element,
                                                 float timeoutInSeconds) CF_WARN_UNUSED_RESULT;
CF_EXPORT AXError AXUIElementCopyAttributeValue(AXUIElementRef _Nonnull element, CFStringRef _Nonnull attribute,
                                                CFTypeRef _Nullable* _Nonnull CF_RETURNS_RETAINED value)
    CF_WARN_UNUSED_RESULT;
CF_EXPORT AXError AXUIElementCopyMultipleAttributeValues(
    AXUIElementRef _Nonnull element, CFArrayRef _Nonnull attributes, AXCopyMultipleAttributeOptions options,
    CFArrayRef _Nullable* _Nonnull CF_RETURNS_RETAINED values) CF_WARN_UNUSED_RESULT;
CF_EXPORT AXError AXUIElementSetAttributeValue(AXUIElementRef _Nonnull element, CFStringRef _Nonnull attribute,
                                               CFTypeRef _Nonnull value) CF_WARN_UNUSED_RESULT;
CF_EXPORT AXError AXUIElementPerformAction(AXUIElementRef _Nonnull element,
                                           CFStringRef _Nonnull action) CF_WARN_UNUSED_RESULT;

CF_EXPORT AXError AXObserverCreate(pid_t application, AXObserverCallback _Nonnull callback,
                                   AXObserverRef _Nullable* _Nonnull CF_RETURNS_RETAINED observer)
    CF_WARN_UNUSED_RESULT;
CF_EXPORT AXError AXObserverAddNotification(AXObserverRef _Nonnull observer, AXUIElementRef _Nonnull element,
                                            CFStringRef _Nonnull notification,
                                            void* _Nullable refcon) CF_WARN_UNUSED_RESULT;
CF_EXPORT AXError AXObserverRemoveNotification(AXObserverRef _Nonnull observer, AXUIElementRef _Nonnull element,
                                               CFStringRef _Nonnull notification) CF_WARN_UNUSED_RESULT;
/// The observer's own: it lives as long as the observer does.
CF_EXPORT CFRunLoopSourceRef _Nonnull AXObserverGetRunLoopSource(AXObserverRef _Nonnull observer)
    CF_RETURNS_NOT_RETAINED CF_WARN_UNUSED_RESULT;
