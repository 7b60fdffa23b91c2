#include "platform/simulated/simulated_event_taps.h"

#include <thread>

namespace ferrowyn {

void SimulatedTapRunLoop::runFor(Seconds slice) {
    std::unique_lock lock(lock_);
    // Waits for an absolute moment of the system clock, because the thread sanitizer understands only this kind of
    // wait.
    const auto end = std::chrono::system_clock::now() + std::chrono::duration_cast<std::chrono::microseconds>(slice);
    stopped_.wait_until(lock, end, [this] { return isStopped_; });
    isStopped_ = false;
}

void SimulatedTapRunLoop::stop() {
    const std::scoped_lock lock(lock_);
    isStopped_ = true;
    stopped_.notify_all();
}

SimulatedEventTap::SimulatedEventTap(std::uint64_t mask, SwitcherModifier trigger, EventTaps::Callback callback)
    : mask_(mask), callback_(std::move(callback)), trigger_(trigger) {}

void SimulatedEventTap::setEnabled(bool enabled) {
    const std::scoped_lock lock(lock_);
    isEnabled_ = enabled && isValid_;
}

bool SimulatedEventTap::isEnabled() const {
    const std::scoped_lock lock(lock_);
    return isEnabled_;
}

void SimulatedEventTap::invalidate() {
    const std::scoped_lock lock(lock_);
    isValid_ = false;
    isEnabled_ = false;
    session_.reset();
}

void SimulatedEventTap::setTrigger(SwitcherModifier modifier) {
    const std::scoped_lock lock(lock_);
    trigger_ = modifier;
}

void SimulatedEventTap::openSession(TapSession session) {
    const std::scoped_lock lock(lock_);
    session_ = session;
}

void SimulatedEventTap::closeSession(TapSession session) {
    const std::scoped_lock lock(lock_);
    if (session_ == session) {
        session_.reset();
    }
}

bool SimulatedEventTap::isValid() const {
    const std::scoped_lock lock(lock_);
    return isValid_;
}

SwitcherModifier SimulatedEventTap::trigger() const {
    const std::scoped_lock lock(lock_);
    return trigger_;
}

bool SimulatedEventTap::isSessionOpen() const {
    const std::scoped_lock lock(lock_);
    return session_.has_value();
}

void SimulatedEventTap::setAttached(bool isAttached) {
    const std::scoped_lock lock(lock_);
    isAttached_ = isAttached;
}

std::optional<TapVerdict> SimulatedEventTap::deliver(const TapEvent& event) {
    {
        const std::scoped_lock lock(lock_);
        const auto typeBit = std::uint64_t{1} << static_cast<std::uint32_t>(event.type());
        if (!isEnabled_ || !isAttached_ || (mask_ & typeBit) == 0) {
            return std::nullopt;
        }
    }
    // Without the lock, because the callback may call the tap.
    return callback_(event);
}

void SimulatedEventTap::disableBySystem(TapEvent::Type reason) {
    {
        const std::scoped_lock lock(lock_);
        if (!isValid_ || !isAttached_) {
            return;
        }
        isEnabled_ = false;
    }
    static_cast<void>(callback_(SimulatedTapEvent(reason, {})));
}

namespace {

class SimulatedTapRunLoopSource final : public TapRunLoopSource {
public:
    explicit SimulatedTapRunLoopSource(std::weak_ptr<SimulatedEventTap> tap) : tap_(std::move(tap)) {}

    void addTo(TapRunLoop&) override { setAttached(true); }
    void removeFrom(TapRunLoop&) override { setAttached(false); }

private:
    void setAttached(bool isAttached) {
        if (const auto tap = tap_.lock()) {
            tap->setAttached(isAttached);
        }
    }

    std::weak_ptr<SimulatedEventTap> tap_;
};

class SimulatedTapThread final : public TapThread {
public:
    explicit SimulatedTapThread(std::function<void()> body) : thread_(std::move(body)) {}
    ~SimulatedTapThread() override { thread_.join(); }
    SimulatedTapThread(const SimulatedTapThread&) = delete;
    SimulatedTapThread& operator=(const SimulatedTapThread&) = delete;

private:
    std::thread thread_;
};

}  // namespace

std::shared_ptr<EventTap> SimulatedEventTaps::create(std::uint64_t mask, SwitcherModifier trigger, Callback callback) {
    if (creationFails_) {
        return nullptr;
    }
    ++creationCount_;
    const auto tap = std::make_shared<SimulatedEventTap>(mask, trigger, std::move(callback));
    latest_ = tap;
    return tap;
}

std::shared_ptr<TapRunLoopSource> SimulatedEventTaps::createSource(const std::shared_ptr<EventTap>& tap) {
    auto simulatedTap = std::dynamic_pointer_cast<SimulatedEventTap>(tap);
    if (sourceFails_ || !simulatedTap) {
        return nullptr;
    }
    return std::make_shared<SimulatedTapRunLoopSource>(std::move(simulatedTap));
}

std::shared_ptr<TapRunLoop> SimulatedEventTaps::currentRunLoop() {
    thread_local const auto loop = std::make_shared<SimulatedTapRunLoop>();
    return loop;
}

std::unique_ptr<TapThread> SimulatedEventTaps::startThread(std::string_view name, std::function<void()> body) {
    if (threadFails_) {
        return nullptr;
    }
    threadName_ = name;
    return std::make_unique<SimulatedTapThread>(std::move(body));
}

bool SimulatedEventTaps::press(TapEvent::Type type, const SimulatedKey& key) {
    const auto tap = installed();
    const auto verdict = tap ? tap->deliver(SimulatedTapEvent(type, key)) : std::nullopt;
    if (!verdict) {
        return true;
    }
    lastVerdict_ = *verdict;
    return !verdict->isSwallowed;
}

std::shared_ptr<SimulatedEventTap> SimulatedEventTaps::installed() const {
    auto tap = latest_.lock();
    return tap && tap->isValid() ? tap : nullptr;
}

}  // namespace ferrowyn
