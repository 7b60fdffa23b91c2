#include "platform/macos/mac_panel_window.h"

namespace {

constexpr CGFloat initialWidth = 640;
constexpr CGFloat initialHeight = 200;
constexpr NSWindowStyleMask style =
    NSWindowStyleMaskBorderless | NSWindowStyleMaskNonactivatingPanel | NSWindowStyleMaskFullSizeContentView;
/// Over full-screen applications, on any Space, and no part of what the user cycles through.
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
