#include <optional>
#include <string>
#include <utility>
#include <vector>

#import "tests/macos/objc/fakes/appkit.h"

using fake_mac::appKit;
using fake_mac::utf8;

@interface NSGraphicsContext ()
@property(strong) NSBitmapImageRep* bitmap;
@end

namespace {

/// Of what is being drawn; nothing while nothing is.
std::optional<std::string> currentAppearance;
std::string currentColor;
CGFloat currentAlpha = 0;
/// Held by what draws into it.
NSGraphicsContext* __weak currentContext;
std::vector<NSGraphicsContext*> savedContexts;

}  // namespace

@implementation NSAppearance {
    std::string _name;
}
+ (NSAppearance*)appearanceNamed:(NSAppearanceName)name {
    NSAppearance* const appearance = [[NSAppearance alloc] init];
    appearance->_name = name.UTF8String;
    return appearance;
}
- (void)performAsCurrentDrawingAppearance:(void(NS_NOESCAPE ^)(void))block {
    const auto previous = std::exchange(currentAppearance, _name);
    block();
    currentAppearance = previous;
}
@end

NSAppearanceName const NSAppearanceNameAqua = @"NSAppearanceNameAqua";
NSAppearanceName const NSAppearanceNameDarkAqua = @"NSAppearanceNameDarkAqua";

@implementation NSColorSpace
+ (NSColorSpace*)sRGBColorSpace {
    return [[NSColorSpace alloc] init];
}
@end

@implementation NSColor
+ (NSColor*)named:(const char*)name {
    NSColor* const color = [[NSColor alloc] init];
    color->_name = name;
    color->_alpha = 1;
    return color;
}
#define NAMED_COLOR(_name)          \
    +(NSColor*)_name##Color {       \
        return [self named:#_name]; \
    }
NAMED_COLOR(clear)
NAMED_COLOR(black)
NAMED_COLOR(label)
NAMED_COLOR(secondaryLabel)
NAMED_COLOR(tertiaryLabel)
NAMED_COLOR(controlAccent)
NAMED_COLOR(systemOrange)
NAMED_COLOR(systemBlue)
NAMED_COLOR(systemPurple)
NAMED_COLOR(systemYellow)
- (NSColor*)colorUsingColorSpace:(NSColorSpace*)space {
    if (space == nil || !currentAppearance) {
        return nil;
    }
    NSColor* const color = [NSColor named:_name.c_str()];
    const auto& components = appKit().systemColors[*currentAppearance + " " + _name];
    color->_redComponent = components[0];
    color->_greenComponent = components[1];
    color->_blueComponent = components[2];
    return color;
}
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha {
    NSColor* const color = [NSColor named:_name.c_str()];
    color->_alpha = alpha;
    return color;
}
- (void)setFill {
    currentColor = _name;
    currentAlpha = _alpha;
}
@end

const NSFontWeight NSFontWeightLight = -0.4;
const NSFontWeight NSFontWeightRegular = 0;
const NSFontWeight NSFontWeightMedium = 0.23;
const NSFontWeight NSFontWeightSemibold = 0.3;
NSAttributedStringKey const NSFontAttributeName = @"NSFont";
NSAttributedStringKey const NSForegroundColorAttributeName = @"NSColor";

@implementation NSFont
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize {
    NSFont* const font = [[NSFont alloc] init];
    font->_pointSize = fontSize;
    return font;
}
+ (NSFont*)menuFontOfSize:(CGFloat)fontSize {
    NSFont* const font = [self systemFontOfSize:fontSize];
    font->_isMenuFont = YES;
    return font;
}
@end

@implementation NSImageSymbolConfiguration
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight {
    NSImageSymbolConfiguration* const configuration = [[self alloc] init];
    configuration->_pointSize = pointSize;
    configuration->_weight = weight;
    return configuration;
}
+ (instancetype)configurationWithPaletteColors:(NSArray<NSColor*>*)paletteColors {
    NSImageSymbolConfiguration* const configuration = [[self alloc] init];
    configuration->_paletteColors = paletteColors;
    return configuration;
}
- (instancetype)configurationByApplyingConfiguration:(NSImageSymbolConfiguration*)configuration {
    NSImageSymbolConfiguration* const sum = [[NSImageSymbolConfiguration alloc] init];
    sum->_pointSize = configuration->_pointSize > 0 ? configuration->_pointSize : _pointSize;
    sum->_weight = configuration->_pointSize > 0 ? configuration->_weight : _weight;
    sum->_paletteColors = configuration->_paletteColors ?: _paletteColors;
    return sum;
}
@end

@implementation NSImage {
    BOOL _isIcon;
}
+ (NSImage*)icon {
    NSImage* const image = [[NSImage alloc] init];
    image->_isIcon = YES;
    image->_size = NSMakeSize(512, 512);
    return image;
}
+ (instancetype)imageWithSystemSymbolName:(NSString*)symbolName accessibilityDescription:(NSString*)description {
    if ([symbolName isEqualToString:@"no.such.symbol"]) {
        return nil;
    }
    NSImage* const image = [[self alloc] init];
    image->_symbolName = symbolName;
    image->_symbolDescription = description;
    image->_size = NSMakeSize(16, 14);
    // As symbols of the system are.
    image->_isTemplateImage = YES;
    return image;
}
+ (NSImage*)imageWithSize:(NSSize)size flipped:(BOOL)flipped drawingHandler:(BOOL (^)(NSRect))drawingHandler {
    NSImage* const image = [[NSImage alloc] init];
    image->_size = size;
    image->_drawingHandler = [drawingHandler copy];
    return image;
}
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration {
    NSImage* const image = [self copy];
    image->_configuration = configuration;
    return image;
}
- (id)copyWithZone:(void*)zone {
    NSImage* const image = [[NSImage alloc] init];
    image->_isIcon = _isIcon;
    image->_isTemplateImage = _isTemplateImage;
    image->_size = _size;
    image->_symbolName = _symbolName;
    image->_symbolDescription = _symbolDescription;
    image->_configuration = _configuration;
    image->_drawingHandler = _drawingHandler;
    return image;
}
- (void)drawInRect:(NSRect)rect {
    NSColor* const color = _isTemplateImage ? nil : _configuration.paletteColors.firstObject;
    appKit().fills.push_back({utf8(_symbolName), 1, rect, 0, color == nil ? "black" : color.name});
}
- (void)drawInRect:(NSRect)target
          fromRect:(NSRect)source
         operation:(NSCompositingOperation)operation
          fraction:(CGFloat)fraction {
    NSBitmapImageRep* const bitmap = [NSGraphicsContext.currentContext bitmap];
    if (_symbolName != nil) {
        appKit().drawnSymbols.push_back(
            {utf8(_symbolName), _configuration.pointSize, _configuration.weight, target.size});
        auto* const pixels = reinterpret_cast<std::uint32_t*>(bitmap.bitmapData);
        std::fill_n(pixels, static_cast<std::size_t>(target.size.width * target.size.height), 0x80000000U);
        return;
    }
    if (!_isIcon || source.size.width > 0 || operation != NSCompositingOperationCopy || fraction < 1) {
        return;
    }
    appKit().drawnIconSizes.push_back(_size);
    for (NSInteger row = 0; row < static_cast<NSInteger>(target.size.height); ++row) {
        auto* const line = reinterpret_cast<std::uint32_t*>(bitmap.bitmapData + row * bitmap.bytesPerRow);
        for (NSInteger column = 0; column < static_cast<NSInteger>(target.size.width); ++column) {
            line[column] = static_cast<std::uint32_t>(0xFF000000 + column * 256 + row);
        }
    }
}
@end

NSColorSpaceName const NSDeviceRGBColorSpace = @"NSDeviceRGBColorSpace";

@implementation NSBitmapImageRep {
    std::vector<unsigned char> _data;
}
- (instancetype)initWithBitmapDataPlanes:(unsigned char**)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bps
                         samplesPerPixel:(NSInteger)spp
                                hasAlpha:(BOOL)alpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSColorSpaceName)colorSpaceName
                            bitmapFormat:(NSBitmapFormat)bitmapFormat
                             bytesPerRow:(NSInteger)rBytes
                            bitsPerPixel:(NSInteger)pBits {
    self = [super init];
    const NSBitmapFormat expected = NSBitmapFormatAlphaFirst | NSBitmapFormatThirtyTwoBitLittleEndian;
    const bool isKnown = planes == nullptr && bps == 8 && spp == 4 && alpha && !isPlanar && pBits == 32 &&
                         bitmapFormat == expected && [colorSpaceName isEqualToString:NSDeviceRGBColorSpace];
    if (!isKnown || width < 1 || height < 1 || rBytes < 4 * width) {
        return nil;
    }
    _bytesPerRow = rBytes;
    _data.resize(static_cast<std::size_t>(rBytes * height));
    return self;
}
- (unsigned char*)bitmapData {
    return _data.data();
}
@end

@implementation NSGraphicsContext
+ (NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmapRep {
    NSGraphicsContext* const context = [[NSGraphicsContext alloc] init];
    context.bitmap = bitmapRep;
    return context;
}
+ (NSGraphicsContext*)currentContext {
    return currentContext;
}
+ (void)setCurrentContext:(NSGraphicsContext*)context {
    currentContext = context;
}
+ (void)saveGraphicsState {
    savedContexts.push_back(currentContext);
}
+ (void)restoreGraphicsState {
    currentContext = savedContexts.back();
    savedContexts.pop_back();
}
@end

@implementation NSBezierPath {
    NSRect _rect;
    CGFloat _radius;
}
+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)xRadius yRadius:(CGFloat)yRadius {
    NSBezierPath* const path = [[NSBezierPath alloc] init];
    path->_rect = rect;
    path->_radius = xRadius == yRadius ? xRadius : -1;
    return path;
}
- (void)fill {
    appKit().fills.push_back({currentColor, currentAlpha, _rect, _radius, {}});
}
@end
