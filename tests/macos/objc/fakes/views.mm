#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#import "tests/macos/objc/fakes/appkit.h"

NSAccessibilityRole const NSAccessibilityButtonRole = @"AXButton";

@implementation NSResponder
- (instancetype)init {
    return [super init];
}
- (void)mouseUp:(NSEvent*)event {
}
- (void)mouseEntered:(NSEvent*)event {
}
- (void)mouseMoved:(NSEvent*)event {
}
- (void)mouseExited:(NSEvent*)event {
}
@end

@implementation NSTrackingArea
- (instancetype)initWithRect:(NSRect)rect
                     options:(NSTrackingAreaOptions)options
                       owner:(id)owner
                    userInfo:(NSDictionary*)userInfo {
    self = [super init];
    _rect = rect;
    _options = options;
    _owner = owner;
    return self;
}
- (id)copyWithZone:(void*)zone {
    return self;
}
@end

@interface NSView ()
@property(readwrite, weak) NSWindow* window;
@property(readwrite, weak) NSView* superview;
@property(readwrite, weak) NSMenuItem* enclosingMenuItem;
@end

@implementation NSView {
    std::vector<NSView*> _subviews;
    std::vector<NSTrackingArea*> _trackingAreas;
    std::vector<NSTrackingArea*> _areasWithPointer;
    NSRect _frame;
    NSString* _accessibilityLabel;
}
- (instancetype)initWithFrame:(NSRect)frameRect {
    self = [super init];
    _frame = frameRect;
    return self;
}
- (instancetype)initWithCoder:(NSCoder*)coder {
    return [self initWithFrame:NSZeroRect];
}
- (void)addSubview:(NSView*)view {
    _subviews.push_back(view);
    view.superview = self;
}
- (NSArray*)subviews {
    return [NSArray arrayWithObjects:_subviews.data() count:_subviews.size()];
}
- (void)setSubviews:(NSArray*)subviews {
    _subviews.clear();
    for (NSView* view in subviews) {
        [self addSubview:view];
    }
}
- (NSRect)frame {
    return _frame;
}
- (void)setFrame:(NSRect)frame {
    _frame.origin = frame.origin;
    [self setFrameSize:frame.size];
}
- (void)setFrameSize:(NSSize)newSize {
    _frame.size = newSize;
}
- (NSRect)bounds {
    return NSMakeRect(0, 0, _frame.size.width, _frame.size.height);
}
- (void)setBounds:(NSRect)bounds {
    _frame.size = bounds.size;
}
- (NSPoint)convertPoint:(NSPoint)point fromView:(NSView*)view {
    return NSMakePoint(point.x - _frame.origin.x, point.y - _frame.origin.y);
}
- (void)layoutSubtreeIfNeeded {
    ++_layoutCount;
}
- (void)drawRect:(NSRect)dirtyRect {
}
- (void)updateTrackingAreas {
}
- (void)addTrackingArea:(NSTrackingArea*)trackingArea {
    _trackingAreas.push_back(trackingArea);
}
- (void)removeTrackingArea:(NSTrackingArea*)trackingArea {
    std::erase(_trackingAreas, trackingArea);
}
- (NSArray*)trackingAreas {
    return [NSArray arrayWithObjects:_trackingAreas.data() count:_trackingAreas.size()];
}
- (void)pointerMovedTo:(NSPoint)place {
    NSEvent* const event = [NSEvent eventAt:place];
    const auto areas = _trackingAreas;
    for (NSTrackingArea* area : areas) {
        const bool isHeard = (area.options & NSTrackingActiveAlways) != 0 || NSApplication.sharedApplication.active;
        const NSRect rect = (area.options & NSTrackingInVisibleRect) != 0 ? self.bounds : area.rect;
        const bool isInside = NSPointInRect([self convertPoint:place fromView:nil], rect);
        const bool wasInside = std::erase(_areasWithPointer, area) > 0;
        if (isInside) {
            _areasWithPointer.push_back(area);
        }
        if (!isHeard) {
            continue;
        }
        const bool wantsCrossings = (area.options & NSTrackingMouseEnteredAndExited) != 0;
        if (isInside != wasInside && wantsCrossings) {
            isInside ? [area.owner mouseEntered:event] : [area.owner mouseExited:event];
        } else if (isInside && (area.options & NSTrackingMouseMoved) != 0) {
            [area.owner mouseMoved:event];
        }
    }
    const auto subviews = _subviews;
    for (NSView* view : subviews) {
        [view pointerMovedTo:place];
    }
}
- (BOOL)isAccessibilityElement {
    return NO;
}
- (NSAccessibilityRole)accessibilityRole {
    return nil;
}
- (NSString*)accessibilityLabel {
    return _accessibilityLabel;
}
- (void)setAccessibilityLabel:(NSString*)accessibilityLabel {
    _accessibilityLabel = [accessibilityLabel copy];
}
- (BOOL)accessibilityPerformPress {
    return NO;
}
@end

@implementation NSControl
@end

@implementation NSTextField
+ (instancetype)labelWithString:(NSString*)stringValue {
    NSTextField* const field = [[NSTextField alloc] initWithFrame:NSZeroRect];
    field.stringValue = stringValue;
    return field;
}
@end

@implementation NSImageView
+ (instancetype)imageViewWithImage:(NSImage*)image {
    NSImageView* const view = [[NSImageView alloc] initWithFrame:NSZeroRect];
    view.image = image;
    return view;
}
@end

@implementation NSButton
@end

@implementation NSStatusBarButton
@end

@implementation NSVisualEffectView
@end

namespace fake_mac {
void registerWindow(NSWindow* window);
}

@interface NSWindow ()
@property(readwrite, getter=isVisible) BOOL visible;
@end

@implementation NSWindow {
    NSRect _frame;
    NSView* _contentView;
    std::vector<std::string> _calls;
}
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag {
    self = [super init];
    _frame = contentRect;
    _styleMask = style;
    _backing = backingStoreType;
    _isDeferred = flag;
    // What a new window is like.
    _opaque = YES;
    _movable = YES;
    _releasedWhenClosed = YES;
    fake_mac::registerWindow(self);
    return self;
}
- (NSView*)contentView {
    return _contentView;
}
- (void)setContentView:(NSView*)contentView {
    _contentView = contentView;
    contentView.window = self;
    contentView.frame = NSMakeRect(0, 0, _frame.size.width, _frame.size.height);
}
- (NSRect)frame {
    return _frame;
}
- (NSRect)contentLayoutRect {
    constexpr CGFloat titleBarHeight = 28;
    const bool isTitled = (_styleMask & NSWindowStyleMaskTitled) != 0;
    return NSMakeRect(0, 0, _frame.size.width, _frame.size.height - (isTitled ? titleBarHeight : 0));
}
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag {
    _frame = frameRect;
    [_contentView setFrame:NSMakeRect(0, 0, frameRect.size.width, frameRect.size.height)];
    _calls.emplace_back(flag ? "setFrame and display" : "setFrame");
}
- (std::vector<std::string>)calls {
    return _calls;
}
- (BOOL)canBecomeKeyWindow {
    return (_styleMask & NSWindowStyleMaskTitled) != 0;
}
- (BOOL)canBecomeMainWindow {
    return (_styleMask & NSWindowStyleMaskTitled) != 0;
}
- (NSInteger)windowNumber {
    return 1;
}
- (void)invalidateShadow {
    _calls.emplace_back("invalidateShadow");
}
- (void)displayIfNeeded {
    _calls.emplace_back("displayIfNeeded");
}
- (void)orderFront:(id)sender {
    self.visible = YES;
    _calls.emplace_back("orderFront");
}
- (void)orderFrontRegardless {
    self.visible = YES;
    _calls.emplace_back("orderFrontRegardless");
}
- (void)orderOut:(id)sender {
    self.visible = NO;
    _calls.emplace_back("orderOut");
}
- (void)makeKeyAndOrderFront:(id)sender {
    self.visible = YES;
    _calls.emplace_back("makeKeyAndOrderFront");
}
- (void)close {
    self.visible = NO;
    _calls.emplace_back("close");
    if (_releasedWhenClosed) {
        // One reference too few from now on, as in the real one.
        extern void objc_release(id) asm("objc_release");
        objc_release(self);
    }
}
@end

@implementation NSPanel
@synthesize floatingPanel = _floatingPanel;
- (void)setFloatingPanel:(BOOL)floatingPanel {
    _floatingPanel = floatingPanel;
    // The level of floating windows.
    self.level = floatingPanel ? 3 : NSNormalWindowLevel;
}
- (BOOL)isFloatingPanel {
    return _floatingPanel;
}
@end
