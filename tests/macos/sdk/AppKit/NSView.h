// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSAccessibility.h>
#include <AppKit/NSResponder.h>
#include <AppKit/NSTrackingArea.h>

NS_ASSUME_NONNULL_BEGIN

@class NSMenuItem;
@class NSWindow;

typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) {
    NSViewNotSizable = 0,
    NSViewWidthSizable = 2,
    NSViewHeightSizable = 16,
};

@interface NSView : NSResponder <NSCoding>
- (instancetype)initWithFrame:(NSRect)frameRect NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
@property(nullable, readonly, weak) NSWindow* window;
@property(nullable, readonly, weak) NSView* superview;
@property(copy) NSArray<__kindof NSView*>* subviews;
- (void)addSubview:(NSView*)view;
@property NSRect frame;
@property NSRect bounds;
- (void)setFrameSize:(NSSize)newSize NS_REQUIRES_SUPER;
@property NSAutoresizingMaskOptions autoresizingMask;
@property BOOL needsDisplay;
- (NSPoint)convertPoint:(NSPoint)point fromView:(nullable NSView*)view;
- (void)layoutSubtreeIfNeeded;
- (void)drawRect:(NSRect)dirtyRect;
- (void)updateTrackingAreas NS_REQUIRES_SUPER;
- (void)addTrackingArea:(NSTrackingArea*)trackingArea;
- (void)removeTrackingArea:(NSTrackingArea*)trackingArea;
@property(copy, readonly) NSArray<NSTrackingArea*>* trackingAreas;
@property(nullable, readonly, weak) NSMenuItem* enclosingMenuItem;
- (BOOL)isAccessibilityElement;
- (nullable NSAccessibilityRole)accessibilityRole;
- (nullable NSString*)accessibilityLabel;
- (void)setAccessibilityLabel:(nullable NSString*)accessibilityLabel;
- (BOOL)accessibilityPerformPress;
@end

NS_ASSUME_NONNULL_END
