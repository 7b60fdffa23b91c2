#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/main_loop.h"

namespace ferrowyn {

/// A main loop whose clock stands still until a test lets time pass. The thread that made it is the main thread, except
/// inside `runAsWorker`. It starts at zero and counts whole nanoseconds, so that ten steps of 0.05 s make 0.5 s.
class SimulatedMainLoop final : public MainLoop {
public:
    SimulatedMainLoop();

    [[nodiscard]] TimePoint now() const override;
    [[nodiscard]] WallTime wallTime() const override;
    void post(Task task) override;
    [[nodiscard]] Subscription after(Seconds delay, Task task) override;
    [[nodiscard]] Subscription every(Seconds interval, Task task) override;
    [[nodiscard]] bool isMainThread() const override;

    /// Sets the calendar's clock, which then advances with the main loop's clock.
    void setWallTime(WallTime time);

    /// Runs every task and timer that falls due, each at its own moment. What is posted runs before a timer of the same
    /// moment, timers of one moment in the order in which they were set.
    void advance(Seconds duration);
    /// Runs what is due now.
    void settle();
    /// Runs one task or timer that is due now, or else the idle work. False when there is nothing to run.
    bool runOne();
    /// Lets time pass in which nothing runs, as when the main thread waits for something.
    void stall(Seconds duration);
    [[nodiscard]] std::size_t postedTaskCount();
    [[nodiscard]] std::size_t pendingTimerCount() const;

    /// Sets the work to run when nothing else is due. It returns whether it did anything.
    void setIdleWork(std::function<bool()> idleWork);
    /// Runs the work in this thread as if in a worker: while it runs, this is not the main thread.
    void runAsWorker(const std::function<void()>& work);

private:
    using Nanoseconds = std::int64_t;
    struct Timer {
        Task task;
        Nanoseconds interval = 0;  ///< 0 for a timer that fires once
    };
    /// Held weakly by the tokens, which may outlive the loop.
    struct Timers {
        std::map<std::pair<Nanoseconds, std::uint64_t>, std::shared_ptr<Timer>> waiting;
        std::uint64_t lastNumber = 0;
    };

    [[nodiscard]] Subscription schedule(Nanoseconds delay, Nanoseconds interval, Task task);
    bool runNext();
    bool runOnePosted();
    bool runOneTimer(Nanoseconds limit);

    std::thread::id mainThread_;
    bool isPlayingWorker_ = false;
    bool isRunning_ = false;
    Nanoseconds now_ = 0;
    /// The calendar's time when the clock stood at zero: 2026-01-01 00:00 UTC, unless a test says otherwise.
    Seconds wallTimeAtStart_{1'767'225'600.0};
    std::function<bool()> idleWork_;
    std::shared_ptr<Timers> timers_ = std::make_shared<Timers>();
    std::mutex postedLock_;
    std::deque<Task> posted_;
};

/// Background work without threads. The work runs when the loop settles, in the order in which it was requested, one
/// iteration after the other, so that every run of a test is the same.
class SimulatedBackgroundWork final : public BackgroundWork {
public:
    explicit SimulatedBackgroundWork(SimulatedMainLoop& mainLoop);

    void run(std::function<void()> work) override;
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override;

    void hold(bool isHeld) { isHeld_ = isHeld; }
    [[nodiscard]] std::size_t waitingCount() const { return waiting_.size(); }
    void dropWaiting() { waiting_.clear(); }

private:
    bool runOne();

    SimulatedMainLoop& mainLoop_;
    bool isHeld_ = false;
    std::deque<std::function<void()>> waiting_;
};

}  // namespace ferrowyn
