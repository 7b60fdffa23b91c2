#include "platform/simulated/simulated_event_taps.h"

#include <thread>
#include <utility>

#include "platform/simulated/simulated_tap_run_loop.h"

namespace ferrowyn {

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
