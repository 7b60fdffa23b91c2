#include "platform/macos/mac_system_looks.h"

#import <AppKit/AppKit.h>

#include <cmath>

#include "platform/macos/mac_icon_image.h"
#include "platform/macos/mac_strings.h"

namespace ferrowyn {

namespace {

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

std::optional<RgbColor> MacSystemLooks::color(Color color, ColorScheme scheme) const {
    __block std::optional<RgbColor> result;
    // The system's colours are others in a dark window, and are said as they are while something is drawn there.
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
