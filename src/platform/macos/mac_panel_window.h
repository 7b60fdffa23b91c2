#pragma once

#import <AppKit/AppKit.h>

/// The switcher's window. Showing it never takes the keyboard from the application in front.
@interface FerrowynSwitcherPanel : NSPanel
+ (instancetype)switcherPanel;
@end
