// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@interface NSColorSpace : NSObject
@property(class, readonly, strong) NSColorSpace* sRGBColorSpace;
@end

@interface NSColor : NSObject <NSCopying>
@property(class, strong, readonly) NSColor* clearColor;
@property(class, strong, readonly) NSColor* blackColor;
@property(class, strong, readonly) NSColor* labelColor;
@property(class, strong, readonly) NSColor* secondaryLabelColor;
@property(class, strong, readonly) NSColor* tertiaryLabelColor;
@property(class, strong, readonly) NSColor* controlAccentColor API_AVAILABLE(macos(10.14));
@property(class, strong, readonly) NSColor* systemOrangeColor;
@property(class, strong, readonly) NSColor* systemBlueColor;
@property(class, strong, readonly) NSColor* systemPurpleColor;
@property(class, strong, readonly) NSColor* systemYellowColor;
/// Nothing where the colour is no colour of that space, such as a pattern.
- (nullable NSColor*)colorUsingColorSpace:(NSColorSpace*)space;
@property(readonly) CGFloat redComponent;
@property(readonly) CGFloat greenComponent;
@property(readonly) CGFloat blueComponent;
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha;
- (void)setFill;
@end

NS_ASSUME_NONNULL_END
