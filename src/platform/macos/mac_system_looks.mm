#include "platform/macos/mac_system_looks.h"

#import <AppKit/AppKit.h>
#import <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

#include <cmath>
#include <cstddef>
#include <cstring>

#include "platform/macos/cocoa.h"

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

/// The image drawn over so many device pixels; transparent where the system does not draw.
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

/// An image of the system, which has a drawing for each size: it is drawn anew each time.
class MacIconImage final : public IconImage {
public:
    /// The size that every icon is given: that of the largest place where the program shows one in a list.
    static constexpr double pointSide = 32;

    explicit MacIconImage(NSImage* _Nonnull image) : image_([image copy]) {
        image_.size = NSMakeSize(pointSide, pointSide);
    }

    /// Transparent where the system does not draw.
    [[nodiscard]] PixelBuffer render(int side) const override { return drawnPixels(image_, side, side); }

private:
    NSImage* _Nonnull image_;
};

NSColor* standardColor(SystemLooks::Color color) {
    switch (color) {
        case SystemLooks::Color::orange:
            return NSColor.systemOrangeColor;
        case SystemLooks::Color::blue:
            return NSColor.systemBlueColor;
        case SystemLooks::Color::purple:
            return NSColor.systemPurpleColor;
        case SystemLooks::Color::yellow:
            return NSColor.systemYellowColor;
    }
    return NSColor.labelColor;
}

NSFontWeight fontWeight(SymbolWeight weight) {
    switch (weight) {
        case SymbolWeight::light:
            return NSFontWeightLight;
        case SymbolWeight::regular:
            return NSFontWeightRegular;
        case SymbolWeight::medium:
            return NSFontWeightMedium;
        case SymbolWeight::semibold:
            return NSFontWeightSemibold;
    }
    return NSFontWeightRegular;
}

std::uint8_t byteOf(CGFloat component) {
    constexpr CGFloat most = 255;
    return static_cast<std::uint8_t>(std::lround(std::fmin(std::fmax(component, 0), 1) * most));
}

}  // namespace

std::shared_ptr<const IconImage> MacIconSource::iconForFile(std::string_view path) {
    return std::make_shared<MacIconImage>([NSWorkspace.sharedWorkspace iconForFile:nsString(path)]);
}

std::shared_ptr<const IconImage> MacIconSource::iconForProcess(Pid pid) {
    NSImage* const icon = [NSRunningApplication runningApplicationWithProcessIdentifier:pid].icon;
    return icon == nil ? nullptr : std::make_shared<MacIconImage>(icon);
}

std::shared_ptr<const IconImage> MacIconSource::genericApplicationIcon(std::string_view /*name*/) {
    return std::make_shared<MacIconImage>([NSWorkspace.sharedWorkspace iconForContentType:UTTypeApplicationBundle]);
}

std::optional<RgbColor> MacSystemLooks::color(Color color, ColorScheme scheme) const {
    __block std::optional<RgbColor> result;
    // The system's colours depend on the appearance; a colour takes its components from the current one.
    NSAppearance* const appearance =
        [NSAppearance appearanceNamed:scheme == ColorScheme::dark ? NSAppearanceNameDarkAqua : NSAppearanceNameAqua];
    [appearance performAsCurrentDrawingAppearance:^{
      NSColor* const said = [standardColor(color) colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
      if (said != nil) {
          result = RgbColor{.red = byteOf(said.redComponent),
                            .green = byteOf(said.greenComponent),
                            .blue = byteOf(said.blueComponent)};
      }
    }];
    return result;
}

std::optional<PixelBuffer> MacSystemLooks::symbol(std::string_view name, double pointSize, SymbolWeight weight,
                                                  double scale) const {
    NSImage* const symbol = [NSImage imageWithSystemSymbolName:nsString(name) accessibilityDescription:nil];
    NSImage* const image = [symbol
        imageWithSymbolConfiguration:[NSImageSymbolConfiguration configurationWithPointSize:pointSize
                                                                                     weight:fontWeight(weight)]];
    const auto width = static_cast<int>(std::ceil(image.size.width * scale));
    const auto height = static_cast<int>(std::ceil(image.size.height * scale));
    if (image == nil || width < 1 || height < 1) {
        return std::nullopt;
    }
    return drawnPixels(image, width, height);
}

}  // namespace ferrowyn
