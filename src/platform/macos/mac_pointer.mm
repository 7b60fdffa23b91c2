#include "platform/macos/mac_pointer.h"

#import <AppKit/AppKit.h>

#include <utility>

namespace ferrowyn {

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
    // The system may refuse, and takes no nil back.
    return monitor == nil ? Subscription() : Subscription([monitor] { [NSEvent removeMonitor:monitor]; });
}

}  // namespace ferrowyn
