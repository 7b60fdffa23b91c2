#include "platform/x11/x11_event_taps.h"

#include <system_error>
#include <utility>

#include "platform/log.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_event_tap.h"
#include "platform/x11/x11_tap_engine.h"
#include "platform/x11/x11_tap_run_loop.h"
#include "platform/x11/x11_tap_thread.h"

namespace ferrowyn {

namespace {

std::unique_ptr<X11TapEngine> makeTapEngine(const std::string& display, SwitcherModifier trigger,
                                            const EventTaps::Callback& callback, X11InputContext& context, Log& log) {
    auto connection = X11Connection::open(display.empty() ? nullptr : display.c_str());
    if (connection == nullptr) {
        log.write(LogLevel::error, "input", "No connection to the X server for the keyboard");
        return nullptr;
    }
    auto guard = X11KeyboardGuard::start(*connection, display, log);
    return X11TapEngine::create(std::move(connection), std::move(guard), trigger, callback, context, log);
}

}  // namespace

X11EventTaps::X11EventTaps(X11InputContext& context, Log& log, std::string display)
    : context_(context), log_(log), display_(std::move(display)) {
    context_.requestKeyboardProbe = [this] {
        if (const auto tap = currentTap()) {
            tap->probeKeyboard();
        }
    };
}

X11EventTaps::~X11EventTaps() {
    context_.requestKeyboardProbe = nullptr;
}

std::shared_ptr<EventTap> X11EventTaps::create(std::uint64_t mask, SwitcherModifier trigger, Callback callback) {
    if (mask != keyboardMask) {
        return nullptr;
    }
    const auto makeEngine = [&context = context_, &log = log_, display = display_,
                             callback = std::move(callback)](SwitcherModifier modifier) {
        return makeTapEngine(display, modifier, callback, context, log);
    };
    auto engine = makeEngine(trigger);
    if (engine == nullptr) {
        return nullptr;
    }
    auto tap = std::make_shared<X11EventTap>(std::move(engine), trigger, makeEngine);
    const std::lock_guard guard(lock_);
    currentTap_ = tap;
    return tap;
}

std::shared_ptr<TapRunLoopSource> X11EventTaps::createSource(const std::shared_ptr<EventTap>& tap) {
    auto x11Tap = std::dynamic_pointer_cast<X11EventTap>(tap);
    return x11Tap != nullptr ? std::make_shared<X11TapRunLoopSource>(std::move(x11Tap)) : nullptr;
}

std::shared_ptr<TapRunLoop> X11EventTaps::currentRunLoop() {
    thread_local const auto loop = std::make_shared<X11TapRunLoop>();
    return loop;
}

std::unique_ptr<TapThread> X11EventTaps::startThread(std::string_view name, std::function<void()> body) {
    try {
        return std::make_unique<X11TapThread>(std::string(name), std::move(body));
    } catch (const std::system_error& error) {
        log_.write(LogLevel::error, "input", std::string("Cannot start the keyboard's thread: ") + error.what());
        return nullptr;
    }
}

void X11EventTaps::notifyKeyboardUnavailable() {
    if (const auto tap = currentTap()) {
        tap->noteKeyboardUnavailable();
    }
}

std::shared_ptr<X11EventTap> X11EventTaps::currentTap() const {
    const std::lock_guard guard(lock_);
    return currentTap_.lock();
}

}  // namespace ferrowyn
