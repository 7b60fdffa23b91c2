#include "platform/macos/mac_running_application_control.h"

#import <AppKit/AppKit.h>

namespace ferrowyn {

namespace {

/// Nil, which answers every question with no, for a process that has gone.
NSRunningApplication* applicationWith(Pid pid) {
    return [NSRunningApplication runningApplicationWithProcessIdentifier:pid];
}

constexpr NSApplicationActivationOptions noOptions{};

}  // namespace

bool MacRunningApplicationControl::isHidden(Pid pid) const {
    return applicationWith(pid).hidden;
}

void MacRunningApplicationControl::unhide(Pid pid) {
    [applicationWith(pid) unhide];
}

void MacRunningApplicationControl::activate(Pid pid) {
    [applicationWith(pid) activateWithOptions:noOptions];
}

bool MacRunningApplicationControl::isActive(Pid pid) const {
    return applicationWith(pid).active;
}

}  // namespace ferrowyn
