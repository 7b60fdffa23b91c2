#include "platform/macos/mac_menu.h"

#include "platform/macos/mac_menu_header_view.h"
#include "platform/macos/mac_strings.h"
#include "platform/macos/mac_symbols.h"

@implementation FerrowynMenuItem {
    ferrowyn::MenuRow _row;
}

- (const ferrowyn::MenuRow&)row {
    return _row;
}

- (void)setRow:(const ferrowyn::MenuRow&)row {
    _row = row;
}

@end

namespace ferrowyn {

namespace {

constexpr CGFloat sectionTitleFontSize = 10;
/// Asks for the menu's usual size.
constexpr CGFloat defaultFontSize = 0;

NSAttributedString* styledText(NSString* text, NSFont* font, NSColor* color) {
    return [[NSAttributedString alloc]
        initWithString:text
            attributes:@{NSFontAttributeName : font, NSForegroundColorAttributeName : color}];
}

NSAttributedString* titleWithSuffix(const MenuRow& row) {
    NSFont* const font = [NSFont menuFontOfSize:defaultFontSize];
    auto* const title = [[NSMutableAttributedString alloc]
        initWithString:nsString(row.title)
            attributes:@{NSFontAttributeName : font, NSForegroundColorAttributeName : NSColor.labelColor}];
    [title appendAttributedString:styledText(nsString("   " + row.titleSuffix), font, NSColor.tertiaryLabelColor)];
    return title;
}

NSMenuItem* headerItem(const MenuRow& row, const MacMenuTarget& target) {
    auto* const item = [[NSMenuItem alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
    item.view = [[FerrowynMenuHeaderView alloc] initWithHeader:row.header
                                                onOpenSettings:[choose = target.onChooseHeader, row] { choose(row); }];
    return item;
}

NSMenuItem* sectionTitleItem(const MenuRow& row) {
    auto* const item = [[NSMenuItem alloc] initWithTitle:nsString(row.title) action:nil keyEquivalent:@""];
    item.attributedTitle =
        styledText(nsString(row.title), [NSFont systemFontOfSize:sectionTitleFontSize], NSColor.tertiaryLabelColor);
    item.enabled = NO;
    return item;
}

NSMenuItem* ordinaryItem(const MenuRow& row, const MacMenuTarget& target) {
    const bool doesSomething = row.action != MenuRow::Action::none;
    auto* const item = [[FerrowynMenuItem alloc] initWithTitle:nsString(row.title)
                                                        action:doesSomething ? target.action : nullptr
                                                 keyEquivalent:nsString(row.keyEquivalent)];
    [item setRow:row];
    item.target = doesSomething ? target.target : nil;
    item.enabled = row.isEnabled;
    item.state = row.isChecked ? NSControlStateValueOn : NSControlStateValueOff;
    if (!row.titleSuffix.empty()) {
        item.attributedTitle = titleWithSuffix(row);
    }
    if (!row.symbol.empty()) {
        item.image = menuSymbol(row.symbol, row.symbolTint);
    }
    if (!row.tooltip.empty()) {
        item.toolTip = nsString(row.tooltip);
    }
    if (!row.representedValue.empty()) {
        item.representedObject = nsString(row.representedValue);
    }
    return item;
}

NSMenuItem* makeItem(const MenuRow& row, const MacMenuTarget& target) {
    switch (row.kind) {
        case MenuRow::Kind::header:
            return headerItem(row, target);
        case MenuRow::Kind::separator:
            return [NSMenuItem separatorItem];
        case MenuRow::Kind::sectionTitle:
            return sectionTitleItem(row);
        case MenuRow::Kind::item:
            return ordinaryItem(row, target);
    }
    return [NSMenuItem separatorItem];
}

}  // namespace

NSMenu* makeMenu(const StatusMenu& rows, const MacMenuTarget& target) {
    auto* const menu = [[NSMenu alloc] initWithTitle:@""];
    // Whether a row is enabled is said by the row, not by whether its target answers.
    menu.autoenablesItems = NO;
    menu.delegate = target.target;
    for (const MenuRow& row : rows) {
        [menu addItem:makeItem(row, target)];
    }
    return menu;
}

}  // namespace ferrowyn
