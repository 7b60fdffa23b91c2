// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSImage.h>

NS_ASSUME_NONNULL_BEGIN

typedef NSString* NSColorSpaceName NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN NSColorSpaceName const NSDeviceRGBColorSpace;

typedef NS_OPTIONS(NSUInteger, NSBitmapFormat) {
    NSBitmapFormatAlphaFirst = 1 << 0,
    NSBitmapFormatThirtyTwoBitLittleEndian = 1 << 9,
};

@interface NSBitmapImageRep : NSObject
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bps
                                  samplesPerPixel:(NSInteger)spp
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)isPlanar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                     bitmapFormat:(NSBitmapFormat)bitmapFormat
                                      bytesPerRow:(NSInteger)rBytes
                                     bitsPerPixel:(NSInteger)pBits;
@property(nullable, readonly) unsigned char* bitmapData NS_RETURNS_INNER_POINTER;
@property(readonly) NSInteger bytesPerRow;
@end

NS_ASSUME_NONNULL_END
