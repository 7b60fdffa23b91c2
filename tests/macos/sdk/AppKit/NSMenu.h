// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <AppKit/NSImage.h>
#include <AppKit/NSView.h>

NS_ASSUME_NONNULL_BEGIN

@class NSMenu;
@class NSMenuItem;

typedef NSInteger NSControlStateValue NS_TYPED_EXTENSIBLE_ENUM;
static const NSControlStateValue NSControlStateValueOff = 0;
static const NSControlStateValue NSControlStateValueOn = 1;

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

NS_ASSUME_NONNULL_END
