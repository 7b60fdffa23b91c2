#include "platform/macos/mac_icon_image.h"

#include <cstddef>
#include <cstring>

namespace ferrowyn {

namespace {

constexpr NSInteger bitsPerSample = 8;
constexpr NSInteger samplesPerPixel = 4;
constexpr NSInteger bytesPerPixel = 4;

/// Premultiplied, with each pixel as the number 0xAARRGGBB in the processor's own order of bytes.
NSBitmapImageRep* emptyBitmap(NSInteger side) {
    return [[NSBitmapImageRep alloc]
        initWithBitmapDataPlanes:nullptr
                      pixelsWide:side
                      pixelsHigh:side
                   bitsPerSample:bitsPerSample
                 samplesPerPixel:samplesPerPixel
                        hasAlpha:YES
                        isPlanar:NO
                  colorSpaceName:NSDeviceRGBColorSpace
                    bitmapFormat:NSBitmapFormatAlphaFirst | NSBitmapFormatThirtyTwoBitLittleEndian
                     bytesPerRow:side * bytesPerPixel
                    bitsPerPixel:bytesPerPixel * bitsPerSample];
}

void draw(NSImage* image, NSBitmapImageRep* bitmap, NSInteger side) {
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext* const context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
    context.imageInterpolation = NSImageInterpolationHigh;
    NSGraphicsContext.currentContext = context;
    // The whole image, replacing what was there.
    [image drawInRect:NSMakeRect(0, 0, static_cast<CGFloat>(side), static_cast<CGFloat>(side))
             fromRect:NSZeroRect
            operation:NSCompositingOperationCopy
             fraction:1];
    [NSGraphicsContext restoreGraphicsState];
}

}  // namespace

MacIconImage::MacIconImage(NSImage* image) : image_([image copy]) {
    image_.size = NSMakeSize(pointSide, pointSide);
}

PixelBuffer MacIconImage::render(int side) const {
    const auto length = static_cast<std::size_t>(side);
    PixelBuffer buffer{.width = side, .height = side, .pixels = std::vector<std::uint32_t>(length * length)};
    NSBitmapImageRep* const bitmap = emptyBitmap(side);
    if (bitmap == nil || bitmap.bitmapData == nullptr) {
        return buffer;
    }
    draw(image_, bitmap, side);
    const auto stride = static_cast<std::size_t>(bitmap.bytesPerRow);
    for (std::size_t row = 0; row < length; ++row) {
        std::memcpy(buffer.pixels.data() + row * length, bitmap.bitmapData + row * stride,
                    length * sizeof(std::uint32_t));
    }
    return buffer;
}

}  // namespace ferrowyn
