// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSColor : NSObject <NSCopying>
@property(class, strong, readonly) NSColor* clearColor;
@property(class, strong, readonly) NSColor* blackColor;
@property(class, strong, readonly) NSColor* labelColor;
@property(class, strong, readonly) NSColor* secondaryLabelColor;
@property(class, strong, readonly) NSColor* tertiaryLabelColor;
@property(class, strong, readonly) NSColor* controlAccentColor API_AVAILABLE(macos(10.14));
@property(class, strong, readonly) NSColor* systemOrangeColor;
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha;
- (void)setFill;
@end

NS_ASSUME_NONNULL_END
