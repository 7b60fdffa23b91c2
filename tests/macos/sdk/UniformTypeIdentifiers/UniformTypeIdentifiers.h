// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(11.0))
@interface UTType : NSObject
@property(readonly) NSString* identifier;
@end

FOUNDATION_EXPORT UTType* const UTTypeApplicationBundle API_AVAILABLE(macos(11.0));

NS_ASSUME_NONNULL_END
