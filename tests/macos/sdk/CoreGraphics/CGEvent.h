// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFMachPort.h>
#include <CoreGraphics/CGEventTypes.h>

CF_EXPORT CFMachPortRef _Nullable CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place,
                                                   CGEventTapOptions options, CGEventMask eventsOfInterest,
                                                   CGEventTapCallBack _Nonnull callback,
                                                   void* _Nullable userInfo) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT void CGEventTapEnable(CFMachPortRef _Nonnull tap, bool enable);
CF_EXPORT bool CGEventTapIsEnabled(CFMachPortRef _Nonnull tap) CF_WARN_UNUSED_RESULT;

CF_EXPORT CGEventRef _Nullable CGEventCreateKeyboardEvent(CGEventSourceRef _Nullable source, CGKeyCode virtualKey,
                                                          bool keyDown) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT CGEventRef _Nullable CGEventCreateCopy(CGEventRef _Nullable event) CF_RETURNS_RETAINED CF_WARN_UNUSED_RESULT;
CF_EXPORT CGEventFlags CGEventGetFlags(CGEventRef _Nullable event) CF_WARN_UNUSED_RESULT;
CF_EXPORT void CGEventSetFlags(CGEventRef _Nullable event, CGEventFlags flags);
CF_EXPORT int64_t CGEventGetIntegerValueField(CGEventRef _Nullable event, CGEventField field) CF_WARN_UNUSED_RESULT;
/// With no room it only tells the length.
CF_EXPORT void CGEventKeyboardGetUnicodeString(CGEventRef _Nullable event, UniCharCount maxStringLength,
                                               UniCharCount* _Nullable actualStringLength,
                                               UniChar* _Nullable unicodeString);
