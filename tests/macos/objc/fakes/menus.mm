#include <algorithm>
#include <vector>

#import "tests/macos/objc/fakes/appkit.h"

extern "C" void objc_msgSend();

namespace {

/// The bar does not hold its items.
std::vector<NSStatusItem * __weak>& items() {
    static std::vector<NSStatusItem * __weak> all;
    return all;
}

void send(id target, SEL action, id sender) {
    using Send = void (*)(id, SEL, id);
    reinterpret_cast<Send>(objc_msgSend)(target, action, sender);
}

}  // namespace

@interface NSView ()
@property(readwrite, weak) NSMenuItem* enclosingMenuItem;
@end

@interface NSMenuItem ()
@property(readwrite, getter=isSeparatorItem) BOOL separatorItem;
@end

@implementation NSMenuItem {
    NSView* _view;
}
+ (NSMenuItem*)separatorItem {
    NSMenuItem* const item = [[self alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
    item.separatorItem = YES;
    return item;
}
- (instancetype)initWithTitle:(NSString*)string action:(SEL)selector keyEquivalent:(NSString*)charCode {
    self = [super init];
    _title = [string copy];
    _action = selector;
    _keyEquivalent = [charCode copy];
    _enabled = YES;
    return self;
}
- (NSView*)view {
    return _view;
}
- (void)setView:(NSView*)view {
    _view = view;
    view.enclosingMenuItem = self;
}
@end

@implementation NSMenu {
    std::vector<NSMenuItem*> _items;
}
- (instancetype)initWithTitle:(NSString*)title {
    self = [super init];
    _title = [title copy];
    _autoenablesItems = YES;
    return self;
}
- (void)addItem:(NSMenuItem*)newItem {
    newItem.menu = self;
    _items.push_back(newItem);
}
- (NSArray*)itemArray {
    return [NSArray arrayWithObjects:_items.data() count:_items.size()];
}
- (void)setItemArray:(NSArray*)itemArray {
    _items.clear();
    for (NSMenuItem* item in itemArray) {
        [self addItem:item];
    }
}
- (void)cancelTracking {
    _wasCancelled = YES;
}
- (BOOL)choose:(NSMenuItem*)item {
    const id target = item.target;
    const bool isEnabled =
        _autoenablesItems ? target != nil && [target respondsToSelector:item.action] : item.enabled != NO;
    if (!isEnabled || target == nil || item.action == nullptr) {
        return NO;
    }
    @autoreleasepool {
        send(target, item.action, item);
    }
    return YES;
}
@end

@implementation NSStatusItem {
    NSStatusBarButton* _button;
}
- (NSStatusBarButton*)button {
    if (_button == nil) {
        _button = [[NSStatusBarButton alloc] initWithFrame:NSZeroRect];
    }
    return _button;
}
@end

@implementation NSStatusBar
+ (NSStatusBar*)systemStatusBar {
    return [[NSStatusBar alloc] init];
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    NSStatusItem* const item = [[NSStatusItem alloc] init];
    item.length = length;
    item.isInBar = YES;
    items().push_back(item);
    return item;
}
- (void)removeStatusItem:(NSStatusItem*)item {
    item.isInBar = NO;
    std::erase_if(items(), [item](NSStatusItem* other) { return other == item; });
}
+ (NSUInteger)itemCount {
    return items().size();
}
+ (NSStatusItem*)onlyItem {
    return items().size() == 1 ? items().front() : nil;
}
@end
