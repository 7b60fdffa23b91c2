#include "platform/macos/mac_panel.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/cocoa.h"

/// The switcher's window. Showing it never takes the keyboard from the application in front.
@interface FerrowynSwitcherPanel : NSPanel
+ (instancetype)switcherPanel;
@end

namespace {

constexpr CGFloat initialWidth = 640;
constexpr CGFloat initialHeight = 200;
constexpr NSWindowStyleMask style =
    NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel | NSWindowStyleMaskFullSizeContentView;
/// Over full-screen applications, on every Space, and not among the windows that the user cycles through.
constexpr NSWindowCollectionBehavior behavior =
    NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorStationary |
    NSWindowCollectionBehaviorIgnoresCycle | NSWindowCollectionBehaviorFullScreenAuxiliary;

}  // namespace

@implementation FerrowynSwitcherPanel

+ (instancetype)switcherPanel {
    FerrowynSwitcherPanel* const panel =
        [[FerrowynSwitcherPanel alloc] initWithContentRect:NSMakeRect(0, 0, initialWidth, initialHeight)
                                                 styleMask:style
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
    panel.floatingPanel = YES;
    // After it: making a panel float sets its level.
    panel.level = NSScreenSaverWindowLevel;
    panel.opaque = NO;
    panel.backgroundColor = NSColor.clearColor;
    panel.hasShadow = YES;
    panel.hidesOnDeactivate = NO;
    panel.releasedWhenClosed = NO;
    panel.animationBehavior = NSWindowAnimationBehaviorNone;
    panel.collectionBehavior = behavior;
    panel.tabbingMode = NSWindowTabbingModeDisallowed;
    panel.movable = NO;
    return panel;
}

- (BOOL)canBecomeKeyWindow {
    return NO;
}

- (BOOL)canBecomeMainWindow {
    return NO;
}

@end

/// Tells the hosted widget where the pointer is while another application is active: the toolkit ignores the moves of
/// the pointer then.
@interface FerrowynPointerFollower : NSObject
- (instancetype)initWithView:(NSView*)view;
- (void)follow:(ferrowyn::HostedWidget&)widget;
- (void)stop;
@end

@implementation FerrowynPointerFollower {
    NSView* _view;
    NSTrackingArea* _area;
    ferrowyn::HostedWidget* _widget;
}

- (instancetype)initWithView:(NSView*)view {
    self = [super init];
    if (self != nil) {
        _view = view;
    }
    return self;
}

- (void)follow:(ferrowyn::HostedWidget&)widget {
    _widget = &widget;
    // In the panel's own view, which the widget fills: the toolkit replaces the areas of its views as it likes.
    _area = [[NSTrackingArea alloc] initWithRect:NSZeroRect
                                         options:NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved |
                                                 NSTrackingActiveAlways | NSTrackingInVisibleRect
                                           owner:self
                                        userInfo:nil];
    [_view addTrackingArea:_area];
}

- (void)stop {
    if (_area != nil) {
        [_view removeTrackingArea:_area];
    }
    _area = nil;
    _widget = nullptr;
}

- (void)mouseEntered:(NSEvent*)event {
    [self mouseMoved:event];
}

- (void)mouseMoved:(NSEvent*)event {
    if (_widget == nullptr || NSApplication.sharedApplication.active) {
        return;
    }
    const NSPoint place = [_view convertPoint:event.locationInWindow fromView:nil];
    _widget->movePointer({.x = place.x, .y = _view.bounds.size.height - place.y});
}

- (void)mouseExited:(NSEvent*)event {
    static_cast<void>(event);
    if (_widget != nullptr) {
        _widget->removePointer();
    }
}

@end

namespace ferrowyn {

namespace {

/// A small rounded square that is stretched in its middle. Only its opacity counts.
NSImage* maskWithRadius(double radius) {
    const CGFloat side = 2 * radius + 1;
    NSImage* const mask = [NSImage imageWithSize:NSMakeSize(side, side)
                                         flipped:NO
                                  drawingHandler:^BOOL(NSRect rect) {
                                    [NSColor.blackColor setFill];
                                    [[NSBezierPath bezierPathWithRoundedRect:rect xRadius:radius yRadius:radius] fill];
                                    return YES;
                                  }];
    mask.capInsets = NSEdgeInsetsMake(radius, radius, radius, radius);
    mask.resizingMode = NSImageResizingModeStretch;
    return mask;
}

/// The blurred material behind the panel's whole content, with round corners. It always looks active, although the
/// panel never is.
NSVisualEffectView* makePanelMaterial(NSRect frame, double cornerRadius) {
    auto* const view = [[NSVisualEffectView alloc] initWithFrame:frame];
    view.material = NSVisualEffectMaterialPopover;
    view.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    view.state = NSVisualEffectStateActive;
    view.maskImage = maskWithRadius(cornerRadius);
    view.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    return view;
}

}  // namespace

struct MacPanel::Parts {
    WidgetHost host;
    FerrowynSwitcherPanel* window;
    FerrowynPointerFollower* follower = nil;
    std::unique_ptr<HostedWidget> widget;
    bool isShown = false;
};

MacPanel::MacPanel(WidgetHost host, double cornerRadius)
    : parts_(new Parts{.host = std::move(host), .window = [FerrowynSwitcherPanel switcherPanel]}) {
    NSRect bounds = parts_->window.frame;
    bounds.origin = NSMakePoint(0, 0);
    parts_->window.contentView = makePanelMaterial(bounds, cornerRadius);
    parts_->window.acceptsMouseMovedEvents = YES;
    parts_->follower = [[FerrowynPointerFollower alloc] initWithView:parts_->window.contentView];
}

MacPanel::~MacPanel() {
    orderOut();
    [parts_->follower stop];
    parts_->widget.reset();
    [parts_->window close];
}

void MacPanel::setContent(std::unique_ptr<PanelContent> content) {
    content_ = std::move(content);
    content_->setBackground(PanelBackground::material);
    if (content_->widget() == nullptr) {
        return;
    }
    parts_->widget = parts_->host(*content_->widget(), addressOf(parts_->window.contentView));
    const NSSize size = parts_->window.frame.size;
    parts_->widget->fill({.width = size.width, .height = size.height});
    [parts_->follower follow:*parts_->widget];
}

void MacPanel::setFrame(const Rect& frame) {
    if (parts_->isShown && content_) {
        content_->synchronize();
    }
    takeFrame(frame);
    if (parts_->isShown) {
        // The shadow follows the outline of what is drawn, and the system does not notice when that changes.
        [parts_->window invalidateShadow];
    }
}

void MacPanel::takeFrame(const Rect& frame) {
    [parts_->window setFrame:toNSRect(frame) display:NO];
    if (parts_->widget) {
        parts_->widget->fill({.width = frame.width, .height = frame.height});
    }
}

void MacPanel::layOutContent() {
    if (content_) {
        content_->synchronize();
    }
    [parts_->window.contentView layoutSubtreeIfNeeded];
    [parts_->window displayIfNeeded];
}

void MacPanel::prepare(const Rect& frame) {
    if (!parts_->isShown) {
        takeFrame(frame);
    }
}

void MacPanel::orderFront() {
    beginShowing();
    [parts_->window orderFront:nil];
}

void MacPanel::orderFrontRegardless() {
    beginShowing();
    [parts_->window orderFrontRegardless];
}

void MacPanel::beginShowing() {
    if (content_) {
        content_->synchronize();
    }
    if (parts_->widget) {
        parts_->widget->setVisible(true);
    }
    parts_->isShown = true;
}

void MacPanel::orderOut() {
    [parts_->window orderOut:nil];
    if (parts_->widget) {
        parts_->widget->setVisible(false);
    }
    parts_->isShown = false;
}

}  // namespace ferrowyn
