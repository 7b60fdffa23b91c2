#include "platform/macos/mac_symbols.h"

#include "platform/macos/mac_strings.h"

namespace ferrowyn {

namespace {

constexpr double menuPointSize = 13;

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
    NSImage* const image = [NSImage imageWithSystemSymbolName:nsString(name)
                                     accessibilityDescription:accessibilityDescription];
    [image setTemplate:YES];
    return image;
}

NSImage* templateSymbol(std::string_view name, NSString* accessibilityDescription, double pointSize) {
    auto* const configuration = [NSImageSymbolConfiguration configurationWithPointSize:pointSize
                                                                                weight:NSFontWeightRegular];
    NSImage* const image = [templateSymbol(name, accessibilityDescription) imageWithSymbolConfiguration:configuration];
    [image setTemplate:YES];
    return image;
}

NSImage* menuSymbol(std::string_view name, MenuTint tint) {
    if (tint == MenuTint::label) {
        return templateSymbol(name, nil, menuPointSize);
    }
    auto* const size = [NSImageSymbolConfiguration configurationWithPointSize:menuPointSize weight:NSFontWeightRegular];
    auto* const color = [NSImageSymbolConfiguration configurationWithPaletteColors:@[ systemColor(tint) ]];
    NSImage* const image = [NSImage imageWithSystemSymbolName:nsString(name) accessibilityDescription:nil];
    NSImage* const tinted = [image imageWithSymbolConfiguration:[size configurationByApplyingConfiguration:color]];
    [tinted setTemplate:NO];
    return tinted;
}

}  // namespace ferrowyn
