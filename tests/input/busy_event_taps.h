#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/event_tap.h"
#include "tests/input/stub_tap_event.h"

namespace ferrowyn {

/// Makes taps whose own, real thread asks them about one event after the other, as many as the test allows.
class BusyEventTaps final : public EventTaps {
public:
    /// Lets the tap thread handle this many more events.
    void allow(int events) {
        const std::lock_guard guard(lock_);
        allowed_ += events;
        changed_.notify_all();
    }
    /// Waits until every allowed event has been handled.
    void waitUntilHandled() {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [this] { return allowed_ == 0; });
    }
    [[nodiscard]] int handledCount() const { return handled_; }
    /// For how long the tap thread last ran its loop.
    [[nodiscard]] Seconds lastSlice() const { return Seconds(lastSlice_); }
    [[nodiscard]] int liveThreadCount() const { return liveThreads_; }
    [[nodiscard]] std::shared_ptr<EventTap> latest() const { return latest_.lock(); }

    /// While held, a started thread does not get to its body.
    void holdThreads(bool isHeld) {
        const std::lock_guard guard(lock_);
        areThreadsHeld_ = isHeld;
        changed_.notify_all();
    }

    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t, SwitcherModifier, Callback callback) override {
        auto tap = std::make_shared<Tap>(std::move(callback));
        latest_ = tap;
        return tap;
    }
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override {
        return std::make_shared<Source>(std::static_pointer_cast<Tap>(tap));
    }
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override { return std::make_shared<Loop>(*this); }
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view, std::function<void()> body) override {
        return std::make_unique<Thread>([this, body = std::move(body)] {
            ++liveThreads_;
            {
                std::unique_lock guard(lock_);
                changed_.wait(guard, [this] { return !areThreadsHeld_; });
            }
            body();
            --liveThreads_;
        });
    }

private:
    class Tap final : public EventTap {
    public:
        explicit Tap(Callback callback) : callback_(std::move(callback)) {}
        void setEnabled(bool enabled) override { isEnabled_ = enabled && isValid_; }
        [[nodiscard]] bool isEnabled() const override { return isEnabled_; }
        void invalidate() override {
            isValid_ = false;
            isEnabled_ = false;
        }
        void setTrigger(SwitcherModifier) override {}
        void setSessionOpen(bool) override {}
        void ask(const TapEvent& event) const {
            if (isEnabled_) {
                static_cast<void>(callback_(event));
            }
        }

    private:
        const Callback callback_;
        std::atomic<bool> isEnabled_ = false;
        std::atomic<bool> isValid_ = true;
    };

    class Loop final : public TapRunLoop {
    public:
        explicit Loop(BusyEventTaps& taps) : taps_(taps) {}
        void serve(std::shared_ptr<Tap> tap) { tap_ = std::move(tap); }
        void runFor(Seconds slice) override {
            taps_.lastSlice_ = slice.count();
            while (taps_.takeOne(*this)) {
                tap_->ask(nextEvent());
                taps_.finishOne();
            }
        }
        void stop() override { taps_.stop(*this); }

        bool isStopped = false;

    private:
        StubTapEvent nextEvent() {
            using Type = TapEvent::Type;
            switch (++count_ % 6) {
                case 0:
                    return {Type::flagsChanged, 58, 0};
                case 1:
                    return {Type::keyDown, 48, event_flags::option};
                case 2:
                    return {Type::keyUp, 48, event_flags::option};
                case 3:
                    return {Type::keyDown, 124, event_flags::option};
                case 4:
                    return {Type::keyDown, 0, 0};
                default:
                    return {Type::disabledByUserInput, 0, 0};
            }
        }

        BusyEventTaps& taps_;
        std::shared_ptr<Tap> tap_;
        int count_ = 0;
    };

    class Source final : public TapRunLoopSource {
    public:
        explicit Source(std::shared_ptr<Tap> tap) : tap_(std::move(tap)) {}
        void addTo(TapRunLoop& loop) override { static_cast<Loop&>(loop).serve(tap_); }
        void removeFrom(TapRunLoop&) override {}

    private:
        std::shared_ptr<Tap> tap_;
    };

    class Thread final : public TapThread {
    public:
        explicit Thread(std::function<void()> body) : thread_(std::move(body)) {}
        ~Thread() override { thread_.join(); }
        Thread(const Thread&) = delete;
        Thread& operator=(const Thread&) = delete;

    private:
        std::thread thread_;
    };

    /// Waits for an event that may be handled; false once the loop was stopped.
    bool takeOne(Loop& loop) {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [&] { return allowed_ > 0 || loop.isStopped; });
        return !std::exchange(loop.isStopped, false);
    }
    void finishOne() {
        ++handled_;
        const std::lock_guard guard(lock_);
        --allowed_;
        changed_.notify_all();
    }
    void stop(Loop& loop) {
        const std::lock_guard guard(lock_);
        loop.isStopped = true;
        changed_.notify_all();
    }

    std::mutex lock_;
    std::condition_variable changed_;
    int allowed_ = 0;
    bool areThreadsHeld_ = false;
    std::atomic<int> handled_ = 0;
    std::atomic<double> lastSlice_ = 0;
    std::atomic<int> liveThreads_ = 0;
    std::weak_ptr<EventTap> latest_;
};

}  // namespace ferrowyn
