// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

typedef double NSTimeInterval;

@interface NSDate : NSObject
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)secs;
@property(readonly) NSTimeInterval timeIntervalSince1970;
@end

NS_ASSUME_NONNULL_END
