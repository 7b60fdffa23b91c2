// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
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

CF_STRICT_BEGIN

CF_ENUM(int32_t, AXError){
    kAXErrorSuccess = 0,
    kAXErrorFailure = -25200,
    kAXErrorIllegalArgument = -25201,
    kAXErrorInvalidUIElement = -25202,
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
typedef const struct __AXValue* AXValueRef;
typedef struct __AXObserver* AXObserverRef;

CF_OPTIONS(UInt32, AXCopyMultipleAttributeOptions){kAXCopyMultipleAttributeOptionStopOnError = 0x1};

typedef void (*AXObserverCallback)(AXObserverRef observer, AXUIElementRef element, CFStringRef notification,
                                   void* _Nullable refcon);

extern const CFStringRef kAXTrustedCheckOptionPrompt;

Boolean AXIsProcessTrusted(void);
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef _Nullable options);

CFTypeID AXUIElementGetTypeID(void);
AXUIElementRef _Nullable AXUIElementCreateApplication(pid_t pid) CF_RETURNS_RETAINED;
AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds);
AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef _Nullable* _Nonnull CF_RETURNS_RETAINED value);
AXError AXUIElementCopyMultipleAttributeValues(AXUIElementRef element, CFArrayRef attributes,
                                               AXCopyMultipleAttributeOptions options,
                                               CFArrayRef _Nullable* _Nonnull CF_RETURNS_RETAINED values);
AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value);
AXError AXUIElementPerformAction(AXUIElementRef element, CFStringRef action);

AXError AXObserverCreate(pid_t application, AXObserverCallback callback,
                         AXObserverRef _Nullable* _Nonnull CF_RETURNS_RETAINED observer);
AXError AXObserverAddNotification(AXObserverRef observer, AXUIElementRef element, CFStringRef notification,
                                  void* _Nullable refcon);
AXError AXObserverRemoveNotification(AXObserverRef observer, AXUIElementRef element, CFStringRef notification);
/// The observer's own: it lives as long as the observer does.
CFRunLoopSourceRef AXObserverGetRunLoopSource(AXObserverRef observer) CF_RETURNS_NOT_RETAINED;

CF_ENUM(UInt32, AXValueType){kAXValueTypeCGPoint = 1, kAXValueTypeCGSize = 2};

CFTypeID AXValueGetTypeID(void);
/// False when the value is of another type.
Boolean AXValueGetValue(AXValueRef value, AXValueType type, void* result);

CF_STRICT_END
