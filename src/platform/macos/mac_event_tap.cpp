#include "platform/macos/mac_event_tap.h"

#include <utility>

#include "platform/macos/mac_tap_event.h"

namespace ferrowyn {

static_assert(EventTaps::keyboardMask ==
              (CGEventMaskBit(kCGEventKeyDown) | CGEventMaskBit(kCGEventKeyUp) | CGEventMaskBit(kCGEventFlagsChanged)));

std::shared_ptr<MacEventTap> MacEventTap::create(std::uint64_t mask, EventTaps::Callback callback) {
    // The tap is its own user pointer, so it exists first.
    std::shared_ptr<MacEventTap> tap(new MacEventTap(std::move(callback)));
    tap->port_ = Owned<CFMachPortRef>(CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap,
                                                       kCGEventTapOptionDefault, mask, receive, tap.get()));
    if (!tap->port_) {
        return nullptr;
    }
    // The system hands out enabled taps. Until a thread serves this one, every key would wait for its verdict.
    CGEventTapEnable(tap->port_.get(), false);
    return tap;
}

MacEventTap::~MacEventTap() {
    invalidate();
}

void MacEventTap::setEnabled(bool enabled) {
    const std::lock_guard guard(lock_);
    wantsEnabled_ = enabled;
    if (isValid_ && isServed_) {
        CGEventTapEnable(port_.get(), enabled);
    }
}

void MacEventTap::setServed(bool isServed) {
    const std::lock_guard guard(lock_);
    isServed_ = isServed;
    if (isValid_ && wantsEnabled_) {
        CGEventTapEnable(port_.get(), isServed);
    }
}

bool MacEventTap::isEnabled() const {
    const std::lock_guard guard(lock_);
    return isValid_ && (isServed_ ? CGEventTapIsEnabled(port_.get()) : wantsEnabled_);
}

void MacEventTap::invalidate() {
    const std::lock_guard guard(lock_);
    if (std::exchange(isValid_, false) && port_) {
        CFMachPortInvalidate(port_.get());
    }
}

CGEventRef MacEventTap::receive(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event, void* userInfo) {
    const auto* const tap = static_cast<const MacEventTap*>(userInfo);
    if (tap == nullptr) {
        return event;
    }
    const TapVerdict verdict = tap->callback_(MacTapEvent(type, event));
    return verdict.isSwallowed ? nullptr : event;
}

}  // namespace ferrowyn
