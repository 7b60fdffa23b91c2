// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSResponder.h>
#include <AppKit/NSRunningApplication.h>
#include <AppKit/NSWindow.h>

NS_ASSUME_NONNULL_BEGIN

@class NSApplication;
@class NSMenu;

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

APPKIT_EXTERN __kindof NSApplication* _Null_unspecified NSApp;
APPKIT_EXTERN NSNotificationName const NSApplicationDidBecomeActiveNotification;
APPKIT_EXTERN NSNotificationName const NSApplicationDidChangeScreenParametersNotification;

NS_ASSUME_NONNULL_END
