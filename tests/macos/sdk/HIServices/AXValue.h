// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>

typedef const struct __AXValue* AXValueRef;

CF_ENUM(UInt32, AXValueType){
    kAXValueTypeIllegal = 0, kAXValueTypeCGPoint = 1, kAXValueTypeCGSize = 2,
    kAXValueTypeCGRect = 3,  kAXValueTypeCFRange = 4, kAXValueTypeAXError = 5,
};

CF_EXPORT CFTypeID AXValueGetTypeID(void) CF_WARN_UNUSED_RESULT;
/// False when the value is of another type.
CF_EXPORT Boolean AXValueGetValue(AXValueRef _Nonnull value, AXValueType type,
                                  void* _Nonnull result) CF_WARN_UNUSED_RESULT;
