// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <Foundation/Foundation.h>
#include <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_ENUM(NSUInteger, NSCompositingOperation) { NSCompositingOperationCopy = 1 };
typedef NS_ENUM(NSInteger, NSImageResizingMode) { NSImageResizingModeTile, NSImageResizingModeStretch };
typedef NS_ENUM(NSUInteger, NSImageInterpolation) { NSImageInterpolationHigh = 3 };
typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) { NSViewWidthSizable = 2, NSViewHeightSizable = 16 };
typedef NS_ENUM(NSInteger, NSVisualEffectMaterial) { NSVisualEffectMaterialPopover = 6 };
typedef NS_ENUM(NSInteger, NSVisualEffectState) { NSVisualEffectStateActive = 1 };
typedef NS_ENUM(NSUInteger, NSLineBreakMode) { NSLineBreakByTruncatingTail = 4 };
typedef NS_ENUM(NSUInteger, NSImageScaling) { NSImageScaleProportionallyUpOrDown = 3 };
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
typedef NS_ENUM(NSInteger, NSWindowAnimationBehavior) { NSWindowAnimationBehaviorNone = 2 };
typedef NS_ENUM(NSInteger, NSWindowTabbingMode) { NSWindowTabbingModeDisallowed = 2 };
typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions) { NSApplicationActivateAllWindows = 1 << 0 };

@interface NSColorSpace : NSObject
@property(class, readonly, strong) NSColorSpace* sRGBColorSpace;
@end

@interface NSColor : NSObject <NSCopying>
@property(class, strong, readonly) NSColor *clearColor, *blackColor, *labelColor, *secondaryLabelColor,
    *tertiaryLabelColor, *systemOrangeColor, *systemBlueColor, *systemPurpleColor, *systemYellowColor;
@property(class, strong, readonly) NSColor* controlAccentColor API_AVAILABLE(macos(10.14));
/// Nothing where the colour is no colour of that space, such as a pattern.
- (nullable NSColor*)colorUsingColorSpace:(NSColorSpace*)space;
@property(readonly) CGFloat redComponent, greenComponent, blueComponent;
- (NSColor*)colorWithAlphaComponent:(CGFloat)alpha;
- (void)setFill;
@end

typedef CGFloat NSFontWeight NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN const NSFontWeight NSFontWeightLight, NSFontWeightRegular, NSFontWeightMedium, NSFontWeightSemibold;

@interface NSFont : NSObject <NSCopying>
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize;
+ (NSFont*)menuFontOfSize:(CGFloat)fontSize;
@property(readonly) CGFloat pointSize;
@end

APPKIT_EXTERN NSAttributedStringKey const NSFontAttributeName, NSForegroundColorAttributeName;

API_AVAILABLE(macos(11.0))
@interface NSImageSymbolConfiguration : NSObject <NSCopying>
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
+ (instancetype)configurationWithPaletteColors:(NSArray<NSColor*>*)paletteColors API_AVAILABLE(macos(12.0));
- (instancetype)configurationByApplyingConfiguration:(NSImageSymbolConfiguration*)configuration
    API_AVAILABLE(macos(12.0));
@end

@interface NSImage : NSObject <NSCopying>
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)symbolName
                          accessibilityDescription:(nullable NSString*)description API_AVAILABLE(macos(11.0));
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)drawingHandlerShouldBeCalledWithFlippedContext
           drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
- (nullable NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration API_AVAILABLE(macos(11.0));
@property NSSize size;
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
@property NSEdgeInsets capInsets;
@property NSImageResizingMode resizingMode;
- (void)drawInRect:(NSRect)rect;
- (void)drawInRect:(NSRect)dstSpacePortionRect
          fromRect:(NSRect)srcSpacePortionRect
         operation:(NSCompositingOperation)op
          fraction:(CGFloat)requestedAlpha;
@end

typedef NSString* NSColorSpaceName NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN NSColorSpaceName const NSDeviceRGBColorSpace;

typedef NS_OPTIONS(NSUInteger, NSBitmapFormat) {
    NSBitmapFormatAlphaFirst = 1 << 0,
    NSBitmapFormatThirtyTwoBitLittleEndian = 1 << 9,
};

@interface NSBitmapImageRep : NSObject
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bps
                                  samplesPerPixel:(NSInteger)spp
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)isPlanar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                     bitmapFormat:(NSBitmapFormat)bitmapFormat
                                      bytesPerRow:(NSInteger)rBytes
                                     bitsPerPixel:(NSInteger)pBits;
@property(nullable, readonly) unsigned char* bitmapData NS_RETURNS_INNER_POINTER;
@property(readonly) NSInteger bytesPerRow;
@end

@interface NSGraphicsContext : NSObject
+ (nullable NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmapRep;
@property(class, nullable, strong) NSGraphicsContext* currentContext;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@property NSImageInterpolation imageInterpolation;
@end

@interface NSBezierPath : NSObject
+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)xRadius yRadius:(CGFloat)yRadius;
- (void)fill;
@end

typedef NSString* NSAppearanceName NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN NSAppearanceName const NSAppearanceNameAqua;
APPKIT_EXTERN NSAppearanceName const NSAppearanceNameDarkAqua API_AVAILABLE(macos(10.14));

@interface NSAppearance : NSObject
+ (nullable NSAppearance*)appearanceNamed:(NSAppearanceName)name;
- (void)performAsCurrentDrawingAppearance:(void(NS_NOESCAPE ^)(void))block API_AVAILABLE(macos(11.0));
@end

typedef NS_ENUM(NSUInteger, NSEventType) {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeRightMouseDown = 3,
    NSEventTypeMouseMoved = 5,
    NSEventTypeOtherMouseDown = 25,
};

typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskLeftMouseDown = 1ULL << NSEventTypeLeftMouseDown,
    NSEventMaskRightMouseDown = 1ULL << NSEventTypeRightMouseDown,
    NSEventMaskOtherMouseDown = 1ULL << NSEventTypeOtherMouseDown,
};

@interface NSEvent : NSObject
@property(readonly) NSEventType type;
@property(readonly) NSPoint locationInWindow;
@property(class, readonly) NSPoint mouseLocation;
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:(void (^)(NSEvent* event))block NS_WARN_UNUSED_RESULT;
+ (void)removeMonitor:(id)eventMonitor;
@end

@interface NSResponder : NSObject
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (void)mouseUp:(NSEvent*)event;
- (void)mouseEntered:(NSEvent*)event;
- (void)mouseMoved:(NSEvent*)event;
- (void)mouseExited:(NSEvent*)event;
@end

typedef NSString* NSAccessibilityRole NS_TYPED_EXTENSIBLE_ENUM;
APPKIT_EXTERN NSAccessibilityRole const NSAccessibilityButtonRole;

typedef NS_OPTIONS(NSUInteger, NSTrackingAreaOptions) {
    NSTrackingMouseEnteredAndExited = 0x01,
    NSTrackingMouseMoved = 0x02,
    NSTrackingActiveAlways = 0x80,
    NSTrackingInVisibleRect = 0x200,
};

@interface NSTrackingArea : NSObject <NSCopying>
- (instancetype)initWithRect:(NSRect)rect
                     options:(NSTrackingAreaOptions)options
                       owner:(nullable id)owner
                    userInfo:(nullable NSDictionary<id, id>*)userInfo;
@property(readonly) NSRect rect;
@property(readonly) NSTrackingAreaOptions options;
@property(nullable, readonly, weak) id owner;
@end

@class NSMenu, NSMenuItem, NSWindow;

@interface NSView : NSResponder <NSCoding>
- (instancetype)initWithFrame:(NSRect)frameRect NS_DESIGNATED_INITIALIZER;
- (nullable instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;
@property(nullable, readonly, weak) NSWindow* window;
@property(nullable, readonly, weak) NSView* superview;
@property(copy) NSArray<__kindof NSView*>* subviews;
- (void)addSubview:(NSView*)view;
@property NSRect frame, bounds;
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

typedef NS_ENUM(NSInteger, NSVisualEffectBlendingMode) {
    NSVisualEffectBlendingModeBehindWindow,
    NSVisualEffectBlendingModeWithinWindow,
};

@interface NSVisualEffectView : NSView
@property NSVisualEffectMaterial material;
@property NSVisualEffectBlendingMode blendingMode;
@property NSVisualEffectState state;
@property(nullable, retain) NSImage* maskImage;
@end

@interface NSControl : NSView
@property(copy) NSString* stringValue;
@property(nullable, strong) NSFont* font;
@property NSLineBreakMode lineBreakMode;
@end

@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString*)stringValue;
@property(nullable, copy) NSColor* textColor;
@end

@interface NSImageView : NSControl
+ (instancetype)imageViewWithImage:(NSImage*)image;
@property(nullable, strong) NSImage* image;
@property NSImageScaling imageScaling;
@end

@interface NSButton : NSControl
@property(nullable, strong) NSImage* image;
@property(nullable, copy) NSString* toolTip;
@end

typedef NSInteger NSControlStateValue NS_TYPED_EXTENSIBLE_ENUM;
static const NSControlStateValue NSControlStateValueOff = 0, NSControlStateValueOn = 1;

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title NS_DESIGNATED_INITIALIZER;
@property(copy) NSString* title;
@property BOOL autoenablesItems;
@property(nullable, weak) id<NSMenuDelegate> delegate;
@property(copy) NSArray<NSMenuItem*>* itemArray;
- (void)addItem:(NSMenuItem*)newItem;
- (void)cancelTracking;
@end

@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)string
                       action:(nullable SEL)selector
                keyEquivalent:(NSString*)charCode NS_DESIGNATED_INITIALIZER;
@property(nullable, weak) NSMenu* menu;
@property(copy) NSString* title;
@property(nullable, copy) NSAttributedString* attributedTitle;
@property(readonly, getter=isSeparatorItem) BOOL separatorItem;
@property(copy) NSString* keyEquivalent;
@property(nullable, strong) NSMenu* submenu;
@property(nullable, strong) NSImage* image;
@property NSControlStateValue state;
@property(getter=isEnabled) BOOL enabled;
@property(nullable, weak) id target;
@property(nullable) SEL action;
@property(nullable, strong) id representedObject;
@property(nullable, strong) NSView* view;
@property(nullable, copy) NSString* toolTip;
@end

typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskBorderless = 0,
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
    NSWindowStyleMaskFullSizeContentView = 1 << 15,
};

typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorStationary = 1 << 4,
    NSWindowCollectionBehaviorIgnoresCycle = 1 << 6,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

typedef NSInteger NSWindowLevel NS_TYPED_EXTENSIBLE_ENUM;
static const NSWindowLevel NSNormalWindowLevel = 0, NSScreenSaverWindowLevel = 1000;

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@property NSWindowStyleMask styleMask;
@property(nullable, strong) __kindof NSView* contentView;
@property(readonly) NSRect frame;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
@property NSWindowLevel level;
@property(getter=isOpaque) BOOL opaque;
@property(null_resettable, copy) NSColor* backgroundColor;
@property BOOL hasShadow, hidesOnDeactivate, acceptsMouseMovedEvents, titlebarAppearsTransparent;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property NSWindowAnimationBehavior animationBehavior;
@property NSWindowCollectionBehavior collectionBehavior;
@property NSWindowTabbingMode tabbingMode;
@property(getter=isMovable) BOOL movable;
@property(readonly) NSRect contentLayoutRect;
@property(readonly, getter=isVisible) BOOL visible;
@property(readonly) BOOL canBecomeKeyWindow, canBecomeMainWindow;
- (void)invalidateShadow;
- (void)displayIfNeeded;
- (void)orderFront:(nullable id)sender;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)close;
@end

@interface NSPanel : NSWindow
@property(getter=isFloatingPanel) BOOL floatingPanel;
@end

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(class, nullable, readonly, strong) NSScreen* mainScreen;
@property(readonly) NSRect frame, visibleFrame;
@end

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
    NSApplicationActivationPolicyProhibited,
};

@interface NSRunningApplication : NSObject
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(int)pid;
@property(readonly, getter=isTerminated) BOOL terminated;
@property(readonly, getter=isHidden) BOOL hidden;
@property(readonly, getter=isActive) BOOL active;
@property(readonly) NSApplicationActivationPolicy activationPolicy;
@property(nullable, readonly, copy) NSString *localizedName, *bundleIdentifier;
@property(nullable, readonly, copy) NSURL* bundleURL;
@property(readonly) int processIdentifier;
@property(nullable, readonly, strong) NSImage* icon;
- (BOOL)unhide;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(readonly, copy) NSArray<NSRunningApplication*>* runningApplications;
@property(nullable, readonly, strong) NSRunningApplication* frontmostApplication;
- (BOOL)openURL:(NSURL*)url;
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs;
- (NSImage*)iconForFile:(NSString*)fullPath;
- (NSImage*)iconForContentType:(UTType*)contentType API_AVAILABLE(macos(11.0));
@end

APPKIT_EXTERN NSString* const NSWorkspaceApplicationKey;
APPKIT_EXTERN NSNotificationName const NSWorkspaceDidLaunchApplicationNotification,
    NSWorkspaceDidTerminateApplicationNotification, NSWorkspaceDidActivateApplicationNotification,
    NSWorkspaceDidHideApplicationNotification, NSWorkspaceDidUnhideApplicationNotification,
    NSWorkspaceActiveSpaceDidChangeNotification;

@class NSApplication;

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(readonly, getter=isActive) BOOL active;
@property(readonly, copy) NSArray<NSWindow*>* windows;
@property(nullable, strong) NSMenu* mainMenu;
@property(null_resettable, strong) NSImage* applicationIconImage;
- (NSApplicationActivationPolicy)activationPolicy;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps API_DEPRECATED("activate", macos(10.0, 14.0));
- (void)terminate:(nullable id)sender;
@end

APPKIT_EXTERN NSNotificationName const NSApplicationDidBecomeActiveNotification,
    NSApplicationDidChangeScreenParametersNotification;

static const CGFloat NSVariableStatusItemLength = -1.0;

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property CGFloat length;
@property(nullable, strong) NSMenu* menu;
@property(nullable, readonly, strong) NSStatusBarButton* button;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length NS_WARN_UNUSED_RESULT;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

NS_ASSUME_NONNULL_END
