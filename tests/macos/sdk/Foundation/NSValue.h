// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <objc/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithLong:(long)value;
+ (NSNumber*)numberWithLongLong:(long long)value;
+ (NSNumber*)numberWithDouble:(double)value;
@property(readonly) const char* objCType NS_RETURNS_INNER_POINTER;
@property(readonly) BOOL boolValue;
@property(readonly) int intValue;
@property(readonly) long long longLongValue;
@property(readonly) double doubleValue;
@end

NS_ASSUME_NONNULL_END
