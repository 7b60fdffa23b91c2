#include "platform/macos/mac_icon_image.h"

#include <cstddef>
#include <cstring>

namespace ferrowyn {

namespace {

constexpr NSInteger bitsPerSample = 8;
constexpr NSInteger samplesPerPixel = 4;
constexpr NSInteger bytesPerPixel = 4;

/// Premultiplied, with each pixel as the number 0xAARRGGBB in the processor's own order of bytes.
NSBitmapImageRep* emptyBitmap(NSInteger width, NSInteger height) {
    return [[NSBitmapImageRep alloc]
        initWithBitmapDataPlanes:nullptr
                      pixelsWide:width
                      pixelsHigh:height
                   bitsPerSample:bitsPerSample
                 samplesPerPixel:samplesPerPixel
                        hasAlpha:YES
                        isPlanar:NO
                  colorSpaceName:NSDeviceRGBColorSpace
                    bitmapFormat:NSBitmapFormatAlphaFirst | NSBitmapFormatThirtyTwoBitLittleEndian
                     bytesPerRow:width * bytesPerPixel
                    bitsPerPixel:bytesPerPixel * bitsPerSample];
}

void draw(NSImage* image, NSBitmapImageRep* bitmap, NSSize size) {
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext* const context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
    context.imageInterpolation = NSImageInterpolationHigh;
    NSGraphicsContext.currentContext = context;
    // The whole image, replacing what was there.
    [image drawInRect:NSMakeRect(0, 0, size.width, size.height)
             fromRect:NSZeroRect
            operation:NSCompositingOperationCopy
             fraction:1];
    [NSGraphicsContext restoreGraphicsState];
}

}  // namespace

PixelBuffer drawnPixels(NSImage* image, int width, int height) {
    const auto columns = static_cast<std::size_t>(width);
    const auto rows = static_cast<std::size_t>(height);
    PixelBuffer buffer{.width = width, .height = height, .pixels = std::vector<std::uint32_t>(columns * rows)};
    NSBitmapImageRep* const bitmap = emptyBitmap(width, height);
    if (bitmap == nil || bitmap.bitmapData == nullptr) {
        return buffer;
    }
    draw(image, bitmap, NSMakeSize(width, height));
    const auto stride = static_cast<std::size_t>(bitmap.bytesPerRow);
    for (std::size_t row = 0; row < rows; ++row) {
        std::memcpy(buffer.pixels.data() + row * columns, bitmap.bitmapData + row * stride,
                    columns * sizeof(std::uint32_t));
    }
    return buffer;
}

MacIconImage::MacIconImage(NSImage* image) : image_([image copy]) {
    image_.size = NSMakeSize(pointSide, pointSide);
}

PixelBuffer MacIconImage::render(int side) const {
    return drawnPixels(image_, side, side);
}

}  // namespace ferrowyn
