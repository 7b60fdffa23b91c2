// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSRunningApplication.h>
#include <UniformTypeIdentifiers/UniformTypeIdentifiers.h>

NS_ASSUME_NONNULL_BEGIN

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
APPKIT_EXTERN NSNotificationName const NSWorkspaceDidLaunchApplicationNotification;
APPKIT_EXTERN NSNotificationName const NSWorkspaceDidTerminateApplicationNotification;
APPKIT_EXTERN NSNotificationName const NSWorkspaceDidActivateApplicationNotification;
APPKIT_EXTERN NSNotificationName const NSWorkspaceDidHideApplicationNotification;
APPKIT_EXTERN NSNotificationName const NSWorkspaceDidUnhideApplicationNotification;
APPKIT_EXTERN NSNotificationName const NSWorkspaceActiveSpaceDidChangeNotification;

NS_ASSUME_NONNULL_END
