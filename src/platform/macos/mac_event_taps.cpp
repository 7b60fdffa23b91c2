#include "platform/macos/mac_event_taps.h"

#include <string>
#include <system_error>
#include <utility>

#include "platform/log.h"
#include "platform/macos/mac_event_tap.h"
#include "platform/macos/mac_tap_event.h"
#include "platform/macos/mac_tap_run_loop.h"
#include "platform/macos/mac_tap_run_loop_source.h"
#include "platform/macos/mac_tap_thread.h"

namespace ferrowyn {

std::shared_ptr<EventTap> MacEventTaps::create(std::uint64_t mask, SwitcherModifier /*trigger*/, Callback callback) {
    MacTapEvent::prepareTexts();
    return MacEventTap::create(mask, [inPool = inPool_, callback = std::move(callback)](const TapEvent& event) {
        TapVerdict verdict;
        inPool([&] { verdict = callback(event); });
        return verdict;
    });
}

std::shared_ptr<TapRunLoopSource> MacEventTaps::createSource(const std::shared_ptr<EventTap>& tap) {
    auto macTap = std::dynamic_pointer_cast<MacEventTap>(tap);
    return macTap != nullptr ? MacTapRunLoopSource::create(std::move(macTap)) : nullptr;
}

std::shared_ptr<TapRunLoop> MacEventTaps::currentRunLoop() {
    return std::make_shared<MacTapRunLoop>(Owned<CFRunLoopRef>::retaining(CFRunLoopGetCurrent()), inPool_);
}

std::unique_ptr<TapThread> MacEventTaps::startThread(std::string_view name, std::function<void()> body) {
    try {
        return std::make_unique<MacTapThread>(std::string(name), std::move(body));
    } catch (const std::system_error& error) {
        log_.write(LogLevel::error, "input", std::string("Cannot start the keyboard's thread: ") + error.what());
        return nullptr;
    }
}

}  // namespace ferrowyn
