#include "platform/x11/x11_event_tap.h"

#include <utility>

namespace ferrowyn {

X11EventTap::X11EventTap(std::unique_ptr<X11TapEngine> engine, SwitcherModifier trigger, MakeEngine makeEngine)
    : trigger_(trigger), makeEngine_(std::move(makeEngine)) {
    adopt(std::move(engine));
}

void X11EventTap::adopt(std::unique_ptr<X11TapEngine> engine) {
    engine_ = std::move(engine);
    engine_->onLoss = [this] { isEnabled_.store(false); };
}

X11EventTap::~X11EventTap() {
    invalidate();
}

void X11EventTap::setEnabled(bool enabled) {
    {
        const std::lock_guard guard(engineLock_);
        isEnabled_.store(enabled && engine_ != nullptr && isConnected_);
    }
    post({enabled ? X11TapRequest::Kind::enable : X11TapRequest::Kind::disable, {}});
}

void X11EventTap::post(const X11TapRequest& request) {
    mailbox_.post(request);
    if (servingThread_.load() == std::this_thread::get_id() && !isServing_) {
        serve();
    }
}

void X11EventTap::noteServingThread() {
    servingThread_.store(std::this_thread::get_id());
}

void X11EventTap::invalidate() {
    const std::lock_guard guard(engineLock_);
    isEnabled_.store(false);
    engine_.reset();
    // The loop may be waiting on the connection that is gone now.
    mailbox_.wake();
}

void X11EventTap::setTrigger(SwitcherModifier modifier) {
    post({X11TapRequest::Kind::setTrigger, modifier});
}

void X11EventTap::setSessionOpen(bool isOpen) {
    post({isOpen ? X11TapRequest::Kind::openSession : X11TapRequest::Kind::closeSession, {}});
}

void X11EventTap::noteKeyboardUnavailable() {
    post({X11TapRequest::Kind::keyboardUnavailable, {}});
}

void X11EventTap::probeKeyboard() {
    post({X11TapRequest::Kind::probeKeyboard, {}});
}

int X11EventTap::connectionDescriptor() const {
    const std::lock_guard guard(engineLock_);
    return engine_ != nullptr && isConnected_ ? engine_->connection().fileDescriptor() : -1;
}

pollfd X11EventTap::inputMethodDescriptor() const {
    const std::lock_guard guard(engineLock_);
    const auto* const method = engine_ != nullptr && isConnected_ ? engine_->inputMethod() : nullptr;
    return method != nullptr ? pollfd{method->descriptor(), method->pollEvents(), 0} : pollfd{-1, 0, 0};
}

int X11EventTap::guardDescriptor() const {
    const std::lock_guard guard(engineLock_);
    return engine_ != nullptr && isConnected_ ? engine_->guardDescriptor() : -1;
}

std::optional<X11TapEngine::Clock::time_point> X11EventTap::deadline() const {
    const std::lock_guard guard(engineLock_);
    return engine_ != nullptr && isConnected_ ? engine_->deadline() : std::nullopt;
}

void X11EventTap::serve() {
    mailbox_.acknowledge();
    const std::lock_guard guard(engineLock_);
    isServing_ = true;
    while (const auto request = mailbox_.take()) {
        handle(*request);
    }
    if (engine_ != nullptr && isConnected_ && !engine_->serve()) {
        replaceEngine();
    }
    isServing_ = false;
}

void X11EventTap::handle(const X11TapRequest& request) {
    using Kind = X11TapRequest::Kind;
    if (request.kind == Kind::setTrigger) {
        // Also while there is no connection, for the next one.
        trigger_ = request.trigger;
    }
    if (engine_ != nullptr && !isConnected_ && request.kind == Kind::enable) {
        connectAgain();
    }
    if (engine_ == nullptr || !isConnected_) {
        return;
    }
    if (request.kind == Kind::disable) {
        isEnabled_.store(false);
    } else if (request.kind == Kind::enable) {
        // Whoever asked has said so already, but the keyboard may have become unavailable just before.
        isEnabled_.store(true);
    }
    engine_->handle(request);
}

/// The guard ends the connection of a tap that was stopped; the tap's owner enables the new one. Where there is no new
/// one, the server is gone or serves as many clients as it can: the next request to enable the tap tries again.
void X11EventTap::replaceEngine() {
    isEnabled_.store(false);
    // A dead descriptor is always readable and must not be waited on.
    isConnected_ = false;
    connectAgain();
    if (isConnected_) {
        engine_->reportLoss();
    } else {
        engine_->reportEnd();
    }
}

void X11EventTap::connectAgain() {
    if (auto engine = makeEngine_(trigger_)) {
        adopt(std::move(engine));
        isConnected_ = true;
    }
}

}  // namespace ferrowyn
