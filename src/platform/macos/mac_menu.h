#pragma once

#import <AppKit/AppKit.h>

#include <functional>

#include "platform/status_item.h"

/// A row of the status item's menu that knows what it stands for, so that choosing one in a menu which has been
/// replaced meanwhile still does what it says.
@interface FerrowynMenuItem : NSMenuItem
- (const ferrowyn::MenuRow&)row;
- (void)setRow:(const ferrowyn::MenuRow&)row;
@end

namespace ferrowyn {

/// What the rows of the menu are sent to. Rows hold their target weakly.
struct MacMenuTarget {
    id<NSMenuDelegate> _Nonnull target;
    /// Takes the row as its sender.
    SEL _Nonnull action;
    /// What a click on the header's gear does.
    std::function<void(const MenuRow&)> onChooseHeader;
};

[[nodiscard]] NSMenu* _Nonnull makeMenu(const StatusMenu& rows, const MacMenuTarget& target);

}  // namespace ferrowyn
