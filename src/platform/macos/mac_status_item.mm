#include "platform/macos/mac_status_item.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/cocoa.h"
#include "platform/macos/mac_menu.h"

/// The menu's delegate and the target of its rows.
@interface FerrowynStatusMenuTarget : NSObject <NSMenuDelegate>
- (void)setHandler:(std::function<void(const ferrowyn::MenuRow&)>)handler;
- (void)choose:(FerrowynMenuItem*)sender;
- (void)chooseRow:(const ferrowyn::MenuRow&)row;
@end

@implementation FerrowynStatusMenuTarget {
    std::function<void(const ferrowyn::MenuRow&)> _handler;
}

- (void)setHandler:(std::function<void(const ferrowyn::MenuRow&)>)handler {
    _handler = std::move(handler);
}

- (void)choose:(FerrowynMenuItem*)sender {
    [self chooseRow:[sender row]];
}

- (void)chooseRow:(const ferrowyn::MenuRow&)row {
    // Copies: what it does may replace the menu and the handler.
    const auto handler = _handler;
    const auto chosen = row;
    if (handler) {
        handler(chosen);
    }
}

@end

namespace ferrowyn {

struct MacStatusItem::Parts {
    NSStatusItem* item;
    FerrowynStatusMenuTarget* target;
};

MacStatusItem::MacStatusItem()
    : parts_(new Parts{[NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength],
                       [[FerrowynStatusMenuTarget alloc] init]}) {}

MacStatusItem::~MacStatusItem() {
    // A menu that is still open outlives this, and so does its target while a row is being chosen.
    [parts_->target setHandler:{}];
    [NSStatusBar.systemStatusBar removeStatusItem:parts_->item];
}

void MacStatusItem::setButton(const StatusButton& button) {
    NSStatusBarButton* const shown = parts_->item.button;
    shown.image = templateSymbol(button.symbol, nsString(button.accessibilityLabel));
    shown.toolTip = nsString(button.tooltip);
    [shown setAccessibilityLabel:nsString(button.accessibilityLabel)];
}

void MacStatusItem::setMenu(const StatusMenu& menu) {
    FerrowynStatusMenuTarget* const __weak weakTarget = parts_->target;
    parts_->item.menu = makeMenu(menu, {
        .target = parts_->target, .action = @selector(choose:),
        .onChooseHeader = [weakTarget](const MenuRow& row) { [weakTarget chooseRow:row]; }
    });
}

void MacStatusItem::setActionHandler(std::function<void(const MenuRow&)> handler) {
    [parts_->target setHandler:std::move(handler)];
}

}  // namespace ferrowyn
