#include "platform/simulated/simulated_main_loop.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace ferrowyn {

namespace {

std::int64_t nanoseconds(Seconds duration) {
    return std::llround(duration.count() * 1e9);
}

}  // namespace

SimulatedMainLoop::SimulatedMainLoop() : mainThread_(std::this_thread::get_id()) {}

TimePoint SimulatedMainLoop::now() const {
    assert(isMainThread());
    return TimePoint(Seconds(static_cast<double>(now_) / 1e9));
}

WallTime SimulatedMainLoop::wallTime() const {
    return WallTime(wallTimeAtStart_ + now().time_since_epoch());
}

void SimulatedMainLoop::setWallTime(WallTime time) {
    wallTimeAtStart_ = time.time_since_epoch() - now().time_since_epoch();
}

void SimulatedMainLoop::post(Task task) {
    const std::scoped_lock lock(postedLock_);
    posted_.push_back(std::move(task));
}

Subscription SimulatedMainLoop::after(Seconds delay, Task task) {
    return schedule(std::max<Nanoseconds>(nanoseconds(delay), 0), 0, std::move(task));
}

Subscription SimulatedMainLoop::every(Seconds interval, Task task) {
    // With an interval of 0, `advance` would never end.
    const Nanoseconds pause = std::max<Nanoseconds>(nanoseconds(interval), 1);
    return schedule(pause, pause, std::move(task));
}

bool SimulatedMainLoop::isMainThread() const {
    return std::this_thread::get_id() == mainThread_ && !isPlayingWorker_;
}

Subscription SimulatedMainLoop::schedule(Nanoseconds delay, Nanoseconds interval, Task task) {
    assert(isMainThread());
    const auto timer = std::make_shared<Timer>(Timer{std::move(task), interval});
    timers_->waiting.emplace(std::pair(now_ + delay, ++timers_->lastNumber), timer);
    return Subscription([timers = std::weak_ptr<Timers>(timers_), timer] {
        if (const auto alive = timers.lock()) {
            std::erase_if(alive->waiting, [&](const auto& entry) { return entry.second == timer; });
        }
    });
}

void SimulatedMainLoop::advance(Seconds duration) {
    const Nanoseconds target = now_ + std::max<Nanoseconds>(nanoseconds(duration), 0);
    settle();
    while (runOneTimer(target)) {
        settle();
    }
    now_ = target;
    settle();
}

void SimulatedMainLoop::settle() {
    assert(isMainThread());
    assert(!isRunning_ && "a task must not run the loop that runs it");
    isRunning_ = true;
    while (runNext()) {
    }
    isRunning_ = false;
}

bool SimulatedMainLoop::runOne() {
    assert(isMainThread());
    assert(!isRunning_ && "a task must not run the loop that runs it");
    isRunning_ = true;
    const bool hasRun = runNext();
    isRunning_ = false;
    return hasRun;
}

bool SimulatedMainLoop::runNext() {
    return runOnePosted() || runOneTimer(now_) || (idleWork_ && idleWork_());
}

void SimulatedMainLoop::stall(Seconds duration) {
    now_ += std::max<Nanoseconds>(nanoseconds(duration), 0);
}

std::size_t SimulatedMainLoop::postedTaskCount() {
    const std::scoped_lock lock(postedLock_);
    return posted_.size();
}

std::size_t SimulatedMainLoop::pendingTimerCount() const {
    return timers_->waiting.size();
}

void SimulatedMainLoop::setIdleWork(std::function<bool()> idleWork) {
    idleWork_ = std::move(idleWork);
}

void SimulatedMainLoop::runAsWorker(const std::function<void()>& work) {
    isPlayingWorker_ = true;
    work();
    isPlayingWorker_ = false;
}

bool SimulatedMainLoop::runOnePosted() {
    Task task;
    {
        const std::scoped_lock lock(postedLock_);
        if (posted_.empty()) {
            return false;
        }
        task = std::move(posted_.front());
        posted_.pop_front();
    }
    task();
    return true;
}

bool SimulatedMainLoop::runOneTimer(Nanoseconds limit) {
    if (timers_->waiting.empty() || timers_->waiting.begin()->first.first > limit) {
        return false;
    }
    const auto entry = timers_->waiting.extract(timers_->waiting.begin());
    const auto timer = entry.mapped();
    now_ = std::max(now_, entry.key().first);
    if (timer->interval > 0) {
        timers_->waiting.emplace(std::pair(entry.key().first + timer->interval, ++timers_->lastNumber), timer);
    }
    timer->task();
    return true;
}

SimulatedBackgroundWork::SimulatedBackgroundWork(SimulatedMainLoop& mainLoop) : mainLoop_(mainLoop) {
    mainLoop_.setIdleWork([this] { return runOne(); });
}

void SimulatedBackgroundWork::run(std::function<void()> work) {
    assert(mainLoop_.isMainThread());
    waiting_.push_back(std::move(work));
}

void SimulatedBackgroundWork::concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) {
    assert(!mainLoop_.isMainThread());
    for (std::size_t index = 0; index < count; ++index) {
        iteration(index);
    }
}

bool SimulatedBackgroundWork::runOne() {
    if (isHeld_ || waiting_.empty()) {
        return false;
    }
    const auto work = std::move(waiting_.front());
    waiting_.pop_front();
    mainLoop_.runAsWorker(work);
    return true;
}

}  // namespace ferrowyn
