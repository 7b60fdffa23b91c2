// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSExceptionName;
FOUNDATION_EXPORT NSExceptionName const NSInternalInconsistencyException;

@interface NSException : NSObject
+ (void)raise:(NSExceptionName)name format:(NSString*)format, ... NS_FORMAT_FUNCTION(2, 3)__attribute__((noreturn));
@end

NS_ASSUME_NONNULL_END
