// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSURL : NSObject <NSCopying>
+ (nullable instancetype)URLWithString:(NSString*)string;
@property(nullable, readonly, copy) NSString* absoluteString;
@property(nullable, readonly, copy) NSString* path;
@end

NS_ASSUME_NONNULL_END
