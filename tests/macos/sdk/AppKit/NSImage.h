// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSColor.h>
#include <AppKit/NSFont.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSCompositingOperation) {
    NSCompositingOperationClear,
    NSCompositingOperationCopy,
    NSCompositingOperationSourceOver,
};

typedef NS_ENUM(NSInteger, NSImageResizingMode) {
    NSImageResizingModeTile,
    NSImageResizingModeStretch,
};

API_AVAILABLE(macos(11.0))
@interface NSImageSymbolConfiguration : NSObject <NSCopying>
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
+ (instancetype)configurationWithPaletteColors:(NSArray<NSColor*>*)paletteColors API_AVAILABLE(macos(12.0));
- (instancetype)configurationByApplyingConfiguration:(NSImageSymbolConfiguration*)configuration
    API_AVAILABLE(macos(12.0));
@end

@interface NSImage : NSObject <NSCopying>
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)symbolName
                          accessibilityDescription:(nullable NSString*)description API_AVAILABLE(macos(11.0));
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)drawingHandlerShouldBeCalledWithFlippedContext
           drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
- (nullable NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration API_AVAILABLE(macos(11.0));
@property NSSize size;
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
@property NSEdgeInsets capInsets;
@property NSImageResizingMode resizingMode;
- (void)drawInRect:(NSRect)rect;
- (void)drawInRect:(NSRect)dstSpacePortionRect
          fromRect:(NSRect)srcSpacePortionRect
         operation:(NSCompositingOperation)op
          fraction:(CGFloat)requestedAlpha;
@end

NS_ASSUME_NONNULL_END
