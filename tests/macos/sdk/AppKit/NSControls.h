// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSImage.h>
#include <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSLineBreakMode) {
    NSLineBreakByWordWrapping = 0,
    NSLineBreakByTruncatingTail = 4,
};

typedef NS_ENUM(NSUInteger, NSImageScaling) {
    NSImageScaleProportionallyDown = 0,
    NSImageScaleAxesIndependently,
    NSImageScaleNone,
    NSImageScaleProportionallyUpOrDown,
};

@interface NSControl : NSView
@property(copy) NSString* stringValue;
@property(nullable, strong) NSFont* font;
@property NSLineBreakMode lineBreakMode;
@end

@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString*)stringValue;
@property(nullable, copy) NSColor* textColor;
@end

@interface NSImageView : NSControl
+ (instancetype)imageViewWithImage:(NSImage*)image;
@property(nullable, strong) NSImage* image;
@property NSImageScaling imageScaling;
@end

@interface NSButton : NSControl
@property(nullable, strong) NSImage* image;
@property(nullable, copy) NSString* toolTip;
@end

NS_ASSUME_NONNULL_END
