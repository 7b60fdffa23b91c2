#pragma once

#import <AppKit/AppKit.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#import "tests/macos/objc/fakes/foundation.h"

// What a test scripts in the fake AppKit, and reads from it.

@interface NSColor ()
/// The name by which the system knows the colour.
@property(readonly) std::string name;
@property(readonly) CGFloat alpha;
@end

@interface NSFont ()
@property(readonly) BOOL isMenuFont;
@end

@interface NSImageSymbolConfiguration ()
@property(readonly) CGFloat pointSize;
@property(readonly) NSFontWeight weight;
@property(readonly, strong) NSArray<NSColor*>* paletteColors;
@end

@interface NSImage ()
/// An icon in which each pixel has the value 0xFF000000 + column × 256 + row, counted from the top.
+ (NSImage*)icon;
@property(readonly, copy) NSString* symbolName;
@property(readonly, copy) NSString* symbolDescription;
@property(readonly, strong) NSImageSymbolConfiguration* configuration;
@property(readonly, copy) BOOL (^drawingHandler)(NSRect);
/// Where it was drawn last.
@property(readonly) NSRect lastDrawnRect;
@end

@interface NSRunningApplication ()
- (instancetype)initWithPid:(int)pid;
@property(readwrite, getter=isTerminated) BOOL terminated;
@property(readwrite) NSApplicationActivationPolicy activationPolicy;
@property(readwrite, copy) NSString* localizedName;
@property(readwrite, copy) NSString* bundleIdentifier;
@property(readwrite, copy) NSURL* bundleURL;
@property(readwrite, strong) NSImage* icon;
@property(readwrite, getter=isHidden) BOOL hidden;
@property(readwrite, getter=isActive) BOOL active;
@property(readonly) NSApplicationActivationOptions lastOptions;
@end

@interface NSWorkspace ()
@property(readwrite, copy) NSArray<NSRunningApplication*>* runningApplications;
@property(readwrite, strong) NSRunningApplication* frontmostApplication;
@property(readonly) std::vector<std::string> openedAddresses;
@property(readonly) std::vector<std::string> revealedPaths;
/// The files whose icons were asked for.
@property(readonly) std::vector<std::string> iconPaths;
@property BOOL refusesToOpen;
/// Posts the notification with the application, as the system does.
- (void)post:(NSNotificationName)name application:(NSRunningApplication*)application;
@end

@interface NSScreen ()
+ (NSScreen*)screenWithFrame:(NSRect)frame visibleFrame:(NSRect)visibleFrame;
+ (void)setScreens:(NSArray<NSScreen*>*)screens main:(NSScreen*)main;
@end

@interface NSEvent ()
+ (NSEvent*)eventAt:(NSPoint)place;
+ (void)setMouseLocation:(NSPoint)place;
+ (void)setRefusesMonitors:(BOOL)refuses;
+ (NSUInteger)monitorCount;
+ (NSEventMask)lastMonitorMask;
/// Presses a button in another application: calls every monitor of this kind of event.
+ (void)pressElsewhere:(NSEventType)type;
@end

@interface NSView ()
/// How often the view was asked to lay out its subviews.
@property(readonly) int layoutCount;
/// Moves the pointer to this place of the window: the owners of the tracking areas of this view, and of its subviews,
/// are called.
- (void)pointerMovedTo:(NSPoint)place;
@end

@interface NSWindow ()
@property(readonly) std::vector<std::string> calls;
@property(readonly) NSBackingStoreType backing;
@property(readonly) BOOL isDeferred;
@end

@interface NSMenu ()
@property BOOL wasCancelled;
/// The user chooses the row: its action is sent if the row is enabled.
- (BOOL)choose:(NSMenuItem*)item;
@end

@interface NSStatusItem ()
@property BOOL isInBar;
@end

@interface NSStatusBar ()
+ (NSUInteger)itemCount;
+ (NSStatusItem*)onlyItem;
@end

@interface NSApplication ()
@property(readwrite, getter=isActive) BOOL active;
@property(readonly) std::vector<std::string> calls;
@property(readonly) NSApplicationActivationPolicy policy;
- (void)finishLaunching;
/// The answer of the delegate; YES when it does not implement the method.
- (BOOL)reopenWithVisibleWindows:(BOOL)hasVisibleWindows;
- (void)willTerminate;
@end

namespace fake_mac {

void forgetAppKit();
/// What was drawn outside of bitmaps: filled paths, and symbols by their names.
struct Fill {
    std::string color;
    CGFloat alpha;
    NSRect rect;
    CGFloat radius;
    /// A symbol's own colour. Nothing tints a template that is drawn like this: it is black.
    std::string tint;
};
[[nodiscard]] std::vector<Fill>& fills();
/// The system's colours, by appearance and name: "NSAppearanceNameAqua systemOrange".
[[nodiscard]] std::map<std::string, std::array<CGFloat, 3>>& systemColors();
struct DrawnSymbol {
    std::string name;
    CGFloat pointSize;
    NSFontWeight weight;
    NSSize pixels;
};
/// Symbols that were drawn into bitmaps.
[[nodiscard]] std::vector<DrawnSymbol>& drawnSymbols();
/// The sizes of the icons that were drawn into bitmaps.
[[nodiscard]] std::vector<NSSize>& drawnIconSizes();

}  // namespace fake_mac
