#include "platform/macos/mac_screens.h"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/cocoa.h"

namespace ferrowyn {

namespace {

Screen describe(NSScreen* screen) {
    return {.frame = fromNSRect(screen.frame), .visibleFrame = fromNSRect(screen.visibleFrame)};
}

}  // namespace

std::vector<Screen> MacScreens::all() const {
    std::vector<Screen> all;
    for (NSScreen* screen in NSScreen.screens) {
        all.push_back(describe(screen));
    }
    return all;
}

std::optional<Screen> MacScreens::main() const {
    NSScreen* screen = NSScreen.mainScreen;
    if (screen == nil) {
        screen = NSScreen.screens.firstObject;
    }
    return screen == nil ? std::nullopt : std::optional(describe(screen));
}

Subscription MacScreens::observe(std::function<void()> handler) const {
    return observeNotification(NSNotificationCenter.defaultCenter, NSApplicationDidChangeScreenParametersNotification,
                               [handler = std::move(handler)](NSNotification*) { handler(); });
}

Point MacPointer::location() const {
    const NSPoint location = NSEvent.mouseLocation;
    return {.x = location.x, .y = location.y};
}

Subscription MacPointer::observeClicksElsewhere(std::function<void()> handler) {
    constexpr NSEventMask presses = NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown | NSEventMaskOtherMouseDown;
    const id monitor = [NSEvent addGlobalMonitorForEventsMatchingMask:presses
                                                              handler:^(NSEvent*) {
                                                                handler();
                                                              }];
    // The system may refuse a monitor, and nil must not be removed.
    return monitor == nil ? Subscription() : Subscription([monitor] { [NSEvent removeMonitor:monitor]; });
}

}  // namespace ferrowyn
