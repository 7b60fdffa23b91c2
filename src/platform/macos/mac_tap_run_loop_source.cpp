#include "platform/macos/mac_tap_run_loop_source.h"

#include <utility>

#include "platform/macos/mac_tap_run_loop.h"

namespace ferrowyn {

std::shared_ptr<MacTapRunLoopSource> MacTapRunLoopSource::create(std::shared_ptr<MacEventTap> tap) {
    Owned<CFRunLoopSourceRef> source(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap->port(), 0));
    if (!source) {
        return nullptr;
    }
    return std::shared_ptr<MacTapRunLoopSource>(new MacTapRunLoopSource(std::move(tap), std::move(source)));
}

void MacTapRunLoopSource::addTo(TapRunLoop& loop) {
    CFRunLoopAddSource(dynamic_cast<MacTapRunLoop&>(loop).loop(), source_.get(), kCFRunLoopCommonModes);
    tap_->setServed(true);
}

void MacTapRunLoopSource::removeFrom(TapRunLoop& loop) {
    tap_->setServed(false);
    CFRunLoopRemoveSource(dynamic_cast<MacTapRunLoop&>(loop).loop(), source_.get(), kCFRunLoopCommonModes);
}

}  // namespace ferrowyn
