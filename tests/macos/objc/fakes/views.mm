#include <string>
#include <vector>

#import "tests/macos/objc/fakes/appkit.h"

extern "C" void objc_release(id object);

NSAccessibilityRole const NSAccessibilityButtonRole = @"AXButton";

@implementation NSResponder
- (instancetype)init {
    return [super init];
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
@end

@implementation NSView {
    std::vector<NSView*> _children;
    std::vector<NSTrackingArea*> _areas;
    std::vector<NSTrackingArea*> _areasWithPointer;
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
    _children.push_back(view);
    view.superview = self;
}
- (NSArray*)subviews {
    return [NSArray arrayWithObjects:_children.data() count:_children.size()];
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
    _areas.push_back(trackingArea);
}
- (void)removeTrackingArea:(NSTrackingArea*)trackingArea {
    std::erase(_areas, trackingArea);
}
- (NSArray*)trackingAreas {
    return [NSArray arrayWithObjects:_areas.data() count:_areas.size()];
}
- (void)pointerMovedTo:(NSPoint)place {
    NSEvent* const event = [NSEvent eventAt:place];
    const auto areas = _areas;
    for (NSTrackingArea* area : areas) {
        const bool isHeard = (area.options & NSTrackingActiveAlways) != 0 || NSApplication.sharedApplication.active;
        const NSRect rect = (area.options & NSTrackingInVisibleRect) != 0 ? self.bounds : area.rect;
        const bool isInside = NSPointInRect([self convertPoint:place fromView:nil], rect);
        const bool wasInside = std::erase(_areasWithPointer, area) > 0;
        if (isInside) {
            _areasWithPointer.push_back(area);
        }
        const bool wantsCrossings = (area.options & NSTrackingMouseEnteredAndExited) != 0;
        if (isHeard && isInside != wasInside && wantsCrossings) {
            isInside ? [area.owner mouseEntered:event] : [area.owner mouseExited:event];
        } else if (isHeard && isInside && (area.options & NSTrackingMouseMoved) != 0) {
            [area.owner mouseMoved:event];
        }
    }
    const auto children = _children;
    for (NSView* view : children) {
        [view pointerMovedTo:place];
    }
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

@implementation NSWindow
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
    fake_mac::appKit().windows.push_back(self);
    return self;
}
- (void)setContentView:(NSView*)contentView {
    _contentView = contentView;
    contentView.window = self;
    contentView.frame = NSMakeRect(0, 0, _frame.size.width, _frame.size.height);
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
- (void)note:(const char*)call visible:(BOOL)visible {
    _calls.emplace_back(call);
    _visible = visible;
}
- (void)invalidateShadow {
    [self note:"invalidateShadow" visible:_visible];
}
- (void)displayIfNeeded {
    [self note:"displayIfNeeded" visible:_visible];
}
- (void)orderFront:(id)sender {
    [self note:"orderFront" visible:YES];
}
- (void)orderFrontRegardless {
    [self note:"orderFrontRegardless" visible:YES];
}
- (void)orderOut:(id)sender {
    [self note:"orderOut" visible:NO];
}
- (void)makeKeyAndOrderFront:(id)sender {
    [self note:"makeKeyAndOrderFront" visible:YES];
}
- (void)close {
    [self note:"close" visible:NO];
    if (_releasedWhenClosed) {
        // One reference too few from now on, as in the real one.
        objc_release(self);
    }
}
@end

@implementation NSPanel
- (void)setFloatingPanel:(BOOL)floatingPanel {
    _floatingPanel = floatingPanel;
    // The level of floating windows.
    self.level = floatingPanel ? 3 : NSNormalWindowLevel;
}
@end
