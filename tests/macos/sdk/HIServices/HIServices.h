// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#define kAXRaiseAction CFSTR("AXRaise")

#define kAXFocusedAttribute CFSTR("AXFocused")
#define kAXFocusedWindowAttribute CFSTR("AXFocusedWindow")
#define kAXFrontmostAttribute CFSTR("AXFrontmost")
#define kAXMainAttribute CFSTR("AXMain")
#define kAXMinimizedAttribute CFSTR("AXMinimized")
#define kAXPositionAttribute CFSTR("AXPosition")
#define kAXSizeAttribute CFSTR("AXSize")
#define kAXSubroleAttribute CFSTR("AXSubrole")
#define kAXTitleAttribute CFSTR("AXTitle")
#define kAXWindowsAttribute CFSTR("AXWindows")

CF_ENUM(int32_t, AXError){
    kAXErrorSuccess = 0,
    kAXErrorFailure = -25200,
    kAXErrorIllegalArgument = -25201,
    kAXErrorInvalidUIElement = -25202,
    kAXErrorInvalidUIElementObserver = -25203,
    kAXErrorCannotComplete = -25204,
    kAXErrorAttributeUnsupported = -25205,
    kAXErrorActionUnsupported = -25206,
    kAXErrorNotificationUnsupported = -25207,
    kAXErrorNotImplemented = -25208,
    kAXErrorNotificationAlreadyRegistered = -25209,
    kAXErrorNotificationNotRegistered = -25210,
    kAXErrorAPIDisabled = -25211,
    kAXErrorNoValue = -25212,
};

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

typedef const struct __AXValue* AXValueRef;

CF_ENUM(UInt32, AXValueType){
    kAXValueTypeIllegal = 0, kAXValueTypeCGPoint = 1, kAXValueTypeCGSize = 2,
    kAXValueTypeCGRect = 3,  kAXValueTypeCFRange = 4, kAXValueTypeAXError = 5,
};

CF_EXPORT CFTypeID AXValueGetTypeID(void) CF_WARN_UNUSED_RESULT;
/// False when the value is of another type.
CF_EXPORT Boolean AXValueGetValue(AXValueRef _Nonnull value, AXValueType type,
                                  void* _Nonnull result) CF_WARN_UNUSED_RESULT;
