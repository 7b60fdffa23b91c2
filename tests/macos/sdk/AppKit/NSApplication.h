// Declarations written for this project from public documentation, only of what it calls. They are used for checks on
// Linux alone, are not Apple's headers, and are never on the include path of a build on a Mac.
#pragma once

#include <AppKit/NSResponder.h>
#include <AppKit/NSRunningApplication.h>
#include <AppKit/NSWindow.h>

NS_ASSUME_NONNULL_BEGIN

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
@property(readonly, copy) NSArray<NSWindow*>* windows;
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
