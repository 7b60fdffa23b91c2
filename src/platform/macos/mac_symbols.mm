#include "platform/macos/mac_symbols.h"

#include "platform/macos/mac_strings.h"

namespace ferrowyn {

namespace {

constexpr double menuPointSize = 13;

NSImage* systemSymbol(std::string_view name, NSString* accessibilityDescription) {
    return [NSImage imageWithSystemSymbolName:nsString(name) accessibilityDescription:accessibilityDescription];
}

NSImageSymbolConfiguration* ofSize(double pointSize) {
    return [NSImageSymbolConfiguration configurationWithPointSize:pointSize weight:NSFontWeightRegular];
}

}  // namespace

NSColor* systemColor(MenuTint tint) {
    switch (tint) {
        case MenuTint::label:
            return NSColor.labelColor;
        case MenuTint::secondaryLabel:
            return NSColor.secondaryLabelColor;
        case MenuTint::tertiaryLabel:
            return NSColor.tertiaryLabelColor;
        case MenuTint::orange:
            return NSColor.systemOrangeColor;
        case MenuTint::accent:
            return NSColor.controlAccentColor;
    }
    return NSColor.labelColor;
}

NSImage* templateSymbol(std::string_view name, NSString* accessibilityDescription) {
    NSImage* const image = systemSymbol(name, accessibilityDescription);
    [image setTemplate:YES];
    return image;
}

NSImage* templateSymbol(std::string_view name, NSString* accessibilityDescription, double pointSize) {
    NSImage* const symbol = systemSymbol(name, accessibilityDescription);
    NSImage* const image = [symbol imageWithSymbolConfiguration:ofSize(pointSize)];
    [image setTemplate:YES];
    return image;
}

NSImage* coloredSymbol(std::string_view name, NSString* accessibilityDescription, double pointSize, NSColor* color) {
    auto* const palette = [NSImageSymbolConfiguration configurationWithPaletteColors:@[ color ]];
    auto* const configuration = [ofSize(pointSize) configurationByApplyingConfiguration:palette];
    NSImage* const symbol = systemSymbol(name, accessibilityDescription);
    NSImage* const image = [symbol imageWithSymbolConfiguration:configuration];
    [image setTemplate:NO];
    return image;
}

NSImage* menuSymbol(std::string_view name, MenuTint tint) {
    return tint == MenuTint::label ? templateSymbol(name, nil, menuPointSize)
                                   : coloredSymbol(name, nil, menuPointSize, systemColor(tint));
}

}  // namespace ferrowyn
