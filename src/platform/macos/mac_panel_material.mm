#include "platform/macos/mac_panel_material.h"

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

}  // namespace

NSVisualEffectView* makePanelMaterial(NSRect frame, double cornerRadius) {
    auto* const view = [[NSVisualEffectView alloc] initWithFrame:frame];
    view.material = NSVisualEffectMaterialPopover;
    view.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    view.state = NSVisualEffectStateActive;
    view.maskImage = maskWithRadius(cornerRadius);
    view.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    return view;
}

}  // namespace ferrowyn
