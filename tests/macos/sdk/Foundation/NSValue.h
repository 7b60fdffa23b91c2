// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
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
