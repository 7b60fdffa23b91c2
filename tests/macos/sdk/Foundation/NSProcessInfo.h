// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <Foundation/NSString.h>

NS_ASSUME_NONNULL_BEGIN

typedef struct {
    NSInteger majorVersion;
    NSInteger minorVersion;
    NSInteger patchVersion;
} NSOperatingSystemVersion;

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
@property(readonly) int processIdentifier;
@property(readonly) NSOperatingSystemVersion operatingSystemVersion;
@end

NS_ASSUME_NONNULL_END
