// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <Foundation/NSString.h>
#include <Foundation/NSURL.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
+ (nullable instancetype)bundleWithURL:(NSURL*)url;
@property(readonly, copy) NSURL* bundleURL;
@property(readonly, copy) NSString* bundlePath;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
- (nullable id)objectForInfoDictionaryKey:(NSString*)key;
@end

NS_ASSUME_NONNULL_END
