#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string_view>

#include "platform/status_item.h"

NS_ASSUME_NONNULL_BEGIN

namespace ferrowyn {

[[nodiscard]] NSColor* systemColor(MenuTint tint);

/// A symbol of the system that its surroundings tint; nil when the system has none of this name.
[[nodiscard]] NSImage* _Nullable templateSymbol(std::string_view name, NSString* _Nullable accessibilityDescription);
[[nodiscard]] NSImage* _Nullable templateSymbol(std::string_view name, NSString* _Nullable accessibilityDescription,
                                                double pointSize);
/// A symbol in this colour, for drawing in a view, where nothing tints a template.
[[nodiscard]] NSImage* _Nullable coloredSymbol(std::string_view name, NSString* _Nullable accessibilityDescription,
                                               double pointSize, NSColor* color);
/// The symbol of a menu row: a template for the label's tint, else a symbol in the tint's colour.
[[nodiscard]] NSImage* _Nullable menuSymbol(std::string_view name, MenuTint tint);

}  // namespace ferrowyn

/// The menu's first row: the program's icon and name, how it is doing, and a gear that opens the settings.
@interface FerrowynMenuHeaderView : NSView

- (instancetype)initWithHeader:(const ferrowyn::MenuHeader&)header
                onOpenSettings:(const std::function<void()>&)onOpenSettings NS_DESIGNATED_INITIALIZER;
- (instancetype)initWithFrame:(NSRect)frameRect NS_UNAVAILABLE;
- (instancetype)initWithCoder:(NSCoder*)coder NS_DESIGNATED_INITIALIZER;

@property(nonatomic, readonly) BOOL isHoveringGear;

@end

/// A row of the status item's menu that holds its `MenuRow`: chosen in a menu that has been replaced meanwhile, it
/// still does what it says.
@interface FerrowynMenuItem : NSMenuItem
- (const ferrowyn::MenuRow&)row;
- (void)setRow:(const ferrowyn::MenuRow&)row;
@end

namespace ferrowyn {

/// What the rows of the menu are sent to. Rows hold their target weakly.
struct MacMenuTarget {
    id<NSMenuDelegate> target;
    /// Takes the row as its sender.
    SEL action;
    /// What a click on the header's gear does.
    std::function<void(const MenuRow&)> onChooseHeader;
};

[[nodiscard]] NSMenu* makeMenu(const StatusMenu& rows, const MacMenuTarget& target);

}  // namespace ferrowyn

NS_ASSUME_NONNULL_END
