// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

API_AVAILABLE(macos(11.0))
@interface UTType : NSObject
@property(readonly) NSString* identifier;
@end

FOUNDATION_EXPORT UTType* const UTTypeApplicationBundle API_AVAILABLE(macos(11.0));

NS_ASSUME_NONNULL_END
