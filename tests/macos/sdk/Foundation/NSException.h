// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSExceptionName;
FOUNDATION_EXPORT NSExceptionName const NSInternalInconsistencyException;

@interface NSException : NSObject
+ (void)raise:(NSExceptionName)name format:(NSString*)format, ... NS_FORMAT_FUNCTION(2, 3)__attribute__((noreturn));
@end

NS_ASSUME_NONNULL_END
