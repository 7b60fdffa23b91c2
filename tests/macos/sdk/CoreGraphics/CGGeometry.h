// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CFBase.h>
#include <CoreFoundation/CFDictionary.h>

typedef double CGFloat;

typedef struct CGPoint {
    CGFloat x;
    CGFloat y;
} CGPoint;

typedef struct CGSize {
    CGFloat width;
    CGFloat height;
} CGSize;

typedef struct CGRect {
    CGPoint origin;
    CGSize size;
} CGRect;

/// False, and the rectangle untouched, when the dictionary describes none.
CF_EXPORT bool CGRectMakeWithDictionaryRepresentation(CFDictionaryRef _Nullable dictionary,
                                                      CGRect* _Nullable rectangle) CF_WARN_UNUSED_RESULT;
