// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <objc/NSObject.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSUInteger NSStringEncoding;
enum : NSStringEncoding { NSUTF8StringEncoding = 4 };

@interface NSString : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(nullable, readonly) const char* UTF8String NS_RETURNS_INNER_POINTER;
- (BOOL)isEqualToString:(NSString*)string;
- (NSString*)stringByAppendingString:(NSString*)string;
- (nullable instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)length encoding:(NSStringEncoding)encoding;
@end

NS_ASSUME_NONNULL_END
