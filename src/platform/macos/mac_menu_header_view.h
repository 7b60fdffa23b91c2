#pragma once

#import <AppKit/AppKit.h>

#include <functional>

#include "platform/status_item.h"

/// The menu's first row: the program's icon and name, how it is doing, and a gear that opens the settings.
@interface FerrowynMenuHeaderView : NSView

- (instancetype)initWithHeader:(const ferrowyn::MenuHeader&)header
                onOpenSettings:(std::function<void()>)onOpenSettings NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithFrame:(NSRect)frameRect NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;

@property(nonatomic, readonly) BOOL isHoveringGear;

@end
