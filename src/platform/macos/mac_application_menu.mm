#include "platform/macos/mac_application_menu.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/mac_strings.h"

/// The target of the rows that the program answers itself.
@interface FerrowynApplicationMenuTarget : NSObject
- (instancetype)initWithOnOpenSettings:(std::function<void()>)onOpenSettings;
- (void)openSettings:(id)sender;
@end

@implementation FerrowynApplicationMenuTarget {
    std::function<void()> _onOpenSettings;
}

- (instancetype)initWithOnOpenSettings:(std::function<void()>)onOpenSettings {
    self = [super init];
    if (self != nil) {
        _onOpenSettings = std::move(onOpenSettings);
    }
    return self;
}

- (void)openSettings:(id)sender {
    static_cast<void>(sender);
    _onOpenSettings();
}

@end

namespace ferrowyn {

struct MacApplicationMenu::Parts {
    FerrowynApplicationMenuTarget* target;
    NSMenu* mainMenu;
};

MacApplicationMenu::MacApplicationMenu(const MacApplicationMenuTitles& titles, std::function<void()> onOpenSettings)
    : parts_(
          new Parts{.target = [[FerrowynApplicationMenuTarget alloc] initWithOnOpenSettings:std::move(onOpenSettings)],
                    .mainMenu = [[NSMenu alloc] initWithTitle:@""]}) {
    // The system writes the application's name over the first menu, whatever its title is.
    auto* const menu = [[NSMenu alloc] initWithTitle:@""];
    // A row's modifier is Command unless it says otherwise.
    auto* const settings = [[NSMenuItem alloc] initWithTitle:nsString(titles.settings)
                                                      action:@selector(openSettings:)
                                               keyEquivalent:@","];
    settings.target = parts_->target;
    [menu addItem:settings];
    [menu addItem:[NSMenuItem separatorItem]];
    auto* const quit = [[NSMenuItem alloc] initWithTitle:nsString(titles.quit)
                                                  action:@selector(terminate:)
                                           keyEquivalent:@"q"];
    quit.target = NSApplication.sharedApplication;
    [menu addItem:quit];
    auto* const row = [[NSMenuItem alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
    row.submenu = menu;
    [parts_->mainMenu addItem:row];
    NSApplication.sharedApplication.mainMenu = parts_->mainMenu;
}

MacApplicationMenu::~MacApplicationMenu() {
    if (NSApplication.sharedApplication.mainMenu == parts_->mainMenu) {
        NSApplication.sharedApplication.mainMenu = nil;
    }
}

}  // namespace ferrowyn
