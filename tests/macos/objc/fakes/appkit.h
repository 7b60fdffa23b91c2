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
@property(getter=isTemplate, setter=setTemplate:) BOOL isTemplateImage;
@property(readonly, copy) NSString *symbolName, *symbolDescription;
@property(readonly, strong) NSImageSymbolConfiguration* configuration;
@property(readonly, copy) BOOL (^drawingHandler)(NSRect);
@end

@interface NSRunningApplication ()
- (instancetype)initWithPid:(int)pid;
@property(readwrite, getter=isTerminated) BOOL terminated;
@property(readwrite) NSApplicationActivationPolicy activationPolicy;
@property(readwrite, copy) NSString *localizedName, *bundleIdentifier;
@property(readwrite, copy) NSURL* bundleURL;
@property(readwrite, strong) NSImage* icon;
@property(readwrite, getter=isHidden) BOOL hidden;
@property(readwrite, getter=isActive) BOOL active;
@property(readonly) NSApplicationActivationOptions lastOptions;
@end

@interface NSWorkspace ()
@property(readwrite, copy) NSArray<NSRunningApplication*>* runningApplications;
@property(readwrite, strong) NSRunningApplication* frontmostApplication;
/// The files whose icons were asked for are `iconPaths`.
@property(readonly) std::vector<std::string> openedAddresses, revealedPaths, iconPaths;
@property BOOL refusesToOpen;
/// Adds a running application and posts nothing.
- (void)start:(NSRunningApplication*)application;
/// Posts the notification with the application, as the system does.
- (void)post:(NSNotificationName)name application:(NSRunningApplication*)application;
@end

@interface NSScreen ()
+ (NSScreen*)screenWithFrame:(NSRect)frame visibleFrame:(NSRect)visibleFrame;
@end

@interface NSEvent ()
+ (NSEvent*)eventAt:(NSPoint)place;
/// Presses a button in another application: calls every monitor of this kind of event.
+ (void)pressElsewhere:(NSEventType)type;
@end

@interface NSView ()
@property(readwrite, weak) NSWindow* window;
@property(readwrite, weak) NSView* superview;
@property(readwrite, weak) NSMenuItem* enclosingMenuItem;
@property(copy) NSString* accessibilityLabel;
/// How often the view was asked to lay out its subviews.
@property(readonly) int layoutCount;
/// Moves the pointer to this place of the window: the owners of the tracking areas of this view, and of its subviews,
/// are called.
- (void)pointerMovedTo:(NSPoint)place;
@end

@interface NSWindow ()
@property(readwrite, getter=isVisible) BOOL visible;
@property(readonly) std::vector<std::string> calls;
@property(readonly) NSBackingStoreType backing;
@property(readonly) BOOL isDeferred;
@end

@interface NSMenuItem ()
@property(readwrite, getter=isSeparatorItem) BOOL separatorItem;
@end

@interface NSMenu ()
@property BOOL wasCancelled;
/// The user chooses the row: its action is sent if the row is enabled.
- (BOOL)choose:(NSMenuItem*)item;
@end

@interface NSStatusBar ()
+ (NSStatusItem*)onlyItem;
@end

@interface NSApplication ()
@property(readwrite, getter=isActive) BOOL active;
@property(readonly) NSApplicationActivationPolicy activationPolicy;
@property(readonly) std::vector<std::string> calls;
- (void)finishLaunching;
/// The answer of the delegate; YES when it does not implement the method.
- (BOOL)reopenWithVisibleWindows:(BOOL)hasVisibleWindows;
- (void)willTerminate;
@end

namespace fake_mac {

/// What was drawn outside of bitmaps: filled paths, and symbols by their names.
struct Fill {
    std::string color;
    CGFloat alpha;
    NSRect rect;
    CGFloat radius;
    /// A symbol's own colour. Nothing tints a template that is drawn like this: it is black.
    std::string tint;
};

struct DrawnSymbol {
    std::string name;
    CGFloat pointSize;
    NSFontWeight weight;
    NSSize pixels;
};

struct Monitor {
    id token;
    NSEventMask mask;
    void (^handler)(NSEvent*);
};

/// What the system keeps for the life of a process, and what a test says of the desktop.
struct AppKit {
    NSApplication* application;
    NSWorkspace* workspace;
    NSArray<NSScreen*>* screens;
    NSScreen* mainScreen;
    NSPoint mouseLocation{};
    bool refusesMonitors = false;
    /// A monitor lives until it is removed, whatever its owner does.
    std::vector<Monitor> monitors;
    NSEventMask lastMonitorMask = 0;
    std::vector<NSWindow * __weak> windows;
    /// The bar does not hold its items.
    std::vector<NSStatusItem * __weak> statusItems;
    /// The system's colours, by appearance and name: "NSAppearanceNameAqua systemOrange".
    std::map<std::string, std::array<CGFloat, 3>> systemColors;
    std::vector<Fill> fills;
    /// What was drawn into bitmaps: symbols, and the sizes of icons.
    std::vector<DrawnSymbol> drawnSymbols;
    std::vector<NSSize> drawnIconSizes;
};
[[nodiscard]] AppKit& appKit();

}  // namespace fake_mac
