#include "platform/macos/mac_menu.h"

#include <algorithm>
#include <utility>

#include "platform/macos/cocoa.h"

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

namespace {

namespace metrics = ferrowyn::menu_header;

constexpr CGFloat titleFontSize = 13;
constexpr CGFloat subtitleFontSize = 11;
constexpr CGFloat hoverOpacity = 0.1;

NSTextField* label(const std::string& text, CGFloat fontSize, NSColor* color) {
    NSTextField* const field = [NSTextField labelWithString:ferrowyn::nsString(text)];
    field.font = [NSFont systemFontOfSize:fontSize];
    field.textColor = color;
    return field;
}

}  // namespace

@implementation FerrowynMenuHeaderView {
    NSImageView* _iconView;
    NSTextField* _titleLabel;
    NSTextField* _subtitleLabel;
    NSTrackingArea* _hoverArea;
    std::function<void()> _onOpenSettings;
}

- (instancetype)initWithHeader:(const ferrowyn::MenuHeader&)header
                onOpenSettings:(const std::function<void()>&)onOpenSettings {
    self = [super initWithFrame:NSMakeRect(0, 0, metrics::width, metrics::height)];
    if (self != nil) {
        _onOpenSettings = onOpenSettings;
        _iconView = [NSImageView imageViewWithImage:NSApplication.sharedApplication.applicationIconImage];
        _iconView.imageScaling = NSImageScaleProportionallyUpOrDown;
        _titleLabel = label(header.title, titleFontSize, NSColor.labelColor);
        _subtitleLabel = label(header.subtitle, subtitleFontSize, ferrowyn::systemColor(header.subtitleTint));
        _subtitleLabel.lineBreakMode = NSLineBreakByTruncatingTail;
        [self addSubview:_iconView];
        [self addSubview:_titleLabel];
        [self addSubview:_subtitleLabel];
        self.autoresizingMask = NSViewWidthSizable;
        [self placeParts];
    }
    return self;
}

- (instancetype)initWithCoder:(NSCoder*)coder {
    self = [super initWithCoder:coder];
    [NSException raise:NSInternalInconsistencyException format:@"MenuHeaderView is created in code only"];
    return self;
}

- (NSRect)gearArea {
    return NSMakeRect(self.bounds.size.width - metrics::gearRightInset - metrics::gearSide,
                      (self.bounds.size.height - metrics::gearSide) / 2, metrics::gearSide, metrics::gearSide);
}

- (void)placeParts {
    const NSSize size = self.bounds.size;
    const CGFloat textWidth = std::max<CGFloat>(0, self.gearArea.origin.x - metrics::textToGear - metrics::textLeft);
    _iconView.frame =
        NSMakeRect(metrics::iconLeft, (size.height - metrics::iconSide) / 2, metrics::iconSide, metrics::iconSide);
    _titleLabel.frame = NSMakeRect(metrics::textLeft, size.height - metrics::titleTop - metrics::titleHeight, textWidth,
                                   metrics::titleHeight);
    _subtitleLabel.frame = NSMakeRect(metrics::textLeft, size.height - metrics::subtitleTop - metrics::subtitleHeight,
                                      textWidth, metrics::subtitleHeight);
}

- (void)setFrameSize:(NSSize)newSize {
    [super setFrameSize:newSize];
    [self placeParts];
}

- (void)updateTrackingAreas {
    [super updateTrackingAreas];
    if (_hoverArea != nil) {
        [self removeTrackingArea:_hoverArea];
    }
    // A menu tracks the pointer while another application may be the active one.
    _hoverArea = [[NSTrackingArea alloc]
        initWithRect:self.bounds
             options:NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved | NSTrackingActiveAlways
               owner:self
            userInfo:nil];
    [self addTrackingArea:_hoverArea];
}

- (BOOL)isInGear:(NSEvent*)event {
    return NSPointInRect([self convertPoint:event.locationInWindow fromView:nil], self.gearArea);
}

- (void)mouseMoved:(NSEvent*)event {
    _isHoveringGear = [self isInGear:event];
    self.needsDisplay = YES;
}

- (void)mouseExited:(NSEvent*)event {
    static_cast<void>(event);
    _isHoveringGear = NO;
    self.needsDisplay = YES;
}

- (void)mouseUp:(NSEvent*)event {
    if ([self isInGear:event]) {
        [self openSettings];
    }
}

- (void)openSettings {
    [self.enclosingMenuItem.menu cancelTracking];
    // A copy: the menu, and this view with it, may be replaced by what it does.
    const auto onOpenSettings = _onOpenSettings;
    onOpenSettings();
}

- (void)drawRect:(NSRect)dirtyRect {
    [super drawRect:dirtyRect];
    const NSRect gear = self.gearArea;
    if (_isHoveringGear) {
        [[NSColor.labelColor colorWithAlphaComponent:hoverOpacity] setFill];
        [[NSBezierPath bezierPathWithRoundedRect:NSInsetRect(gear, metrics::hoverInset, metrics::hoverInset)
                                         xRadius:metrics::hoverRadius
                                         yRadius:metrics::hoverRadius] fill];
    }
    NSImage* const symbol =
        ferrowyn::coloredSymbol("gearshape", @"Settings", metrics::gearPointSize, NSColor.labelColor);
    const NSSize size = symbol.size;
    [symbol drawInRect:NSInsetRect(gear, (gear.size.width - size.width) / 2, (gear.size.height - size.height) / 2)];
}

- (BOOL)isAccessibilityElement {
    return YES;
}

- (NSAccessibilityRole)accessibilityRole {
    return NSAccessibilityButtonRole;
}

- (NSString*)accessibilityLabel {
    return @"Settings";
}

- (BOOL)accessibilityPerformPress {
    [self openSettings];
    return YES;
}

@end

@implementation FerrowynMenuItem {
    ferrowyn::MenuRow _row;
}

- (const ferrowyn::MenuRow&)row {
    return _row;
}

- (void)setRow:(const ferrowyn::MenuRow&)row {
    _row = row;
}

@end

namespace ferrowyn {

namespace {

constexpr CGFloat sectionTitleFontSize = 10;
/// Asks for the menu's usual size.
constexpr CGFloat defaultFontSize = 0;

NSAttributedString* styledText(NSString* text, NSFont* font, NSColor* color) {
    return [[NSAttributedString alloc]
        initWithString:text
            attributes:@{NSFontAttributeName : font, NSForegroundColorAttributeName : color}];
}

NSAttributedString* titleWithSuffix(const MenuRow& row) {
    NSFont* const font = [NSFont menuFontOfSize:defaultFontSize];
    auto* const title = [[NSMutableAttributedString alloc]
        initWithString:nsString(row.title)
            attributes:@{NSFontAttributeName : font, NSForegroundColorAttributeName : NSColor.labelColor}];
    [title appendAttributedString:styledText(nsString("   " + row.titleSuffix), font, NSColor.tertiaryLabelColor)];
    return title;
}

NSMenuItem* headerItem(const MenuRow& row, const MacMenuTarget& target) {
    auto* const item = [[NSMenuItem alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
    item.view = [[FerrowynMenuHeaderView alloc] initWithHeader:row.header
                                                onOpenSettings:[choose = target.onChooseHeader, row] { choose(row); }];
    return item;
}

NSMenuItem* sectionTitleItem(const MenuRow& row) {
    auto* const item = [[NSMenuItem alloc] initWithTitle:nsString(row.title) action:nil keyEquivalent:@""];
    item.attributedTitle =
        styledText(nsString(row.title), [NSFont systemFontOfSize:sectionTitleFontSize], NSColor.tertiaryLabelColor);
    item.enabled = NO;
    return item;
}

NSMenuItem* ordinaryItem(const MenuRow& row, const MacMenuTarget& target) {
    const bool doesSomething = row.action != MenuRow::Action::none;
    auto* const item = [[FerrowynMenuItem alloc] initWithTitle:nsString(row.title)
                                                        action:doesSomething ? target.action : nullptr
                                                 keyEquivalent:nsString(row.keyEquivalent)];
    [item setRow:row];
    item.target = doesSomething ? target.target : nil;
    item.enabled = row.isEnabled;
    item.state = row.isChecked ? NSControlStateValueOn : NSControlStateValueOff;
    if (!row.titleSuffix.empty()) {
        item.attributedTitle = titleWithSuffix(row);
    }
    if (!row.symbol.empty()) {
        item.image = menuSymbol(row.symbol, row.symbolTint);
    }
    if (!row.tooltip.empty()) {
        item.toolTip = nsString(row.tooltip);
    }
    if (!row.representedValue.empty()) {
        item.representedObject = nsString(row.representedValue);
    }
    return item;
}

NSMenuItem* makeItem(const MenuRow& row, const MacMenuTarget& target) {
    switch (row.kind) {
        case MenuRow::Kind::header:
            return headerItem(row, target);
        case MenuRow::Kind::separator:
            return [NSMenuItem separatorItem];
        case MenuRow::Kind::sectionTitle:
            return sectionTitleItem(row);
        case MenuRow::Kind::item:
            return ordinaryItem(row, target);
    }
    return [NSMenuItem separatorItem];
}

}  // namespace

NSMenu* makeMenu(const StatusMenu& rows, const MacMenuTarget& target) {
    auto* const menu = [[NSMenu alloc] initWithTitle:@""];
    // Each row says whether it is enabled; the system would ask the target instead.
    menu.autoenablesItems = NO;
    menu.delegate = target.target;
    for (const MenuRow& row : rows) {
        [menu addItem:makeItem(row, target)];
    }
    return menu;
}

}  // namespace ferrowyn
