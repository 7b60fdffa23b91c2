#include "platform/qt/qt_main_loop.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>
#include <QTimerEvent>
#include <algorithm>
#include <atomic>
#include <cassert>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <limits>
#include <utility>

namespace ferrowyn {

namespace {

QEvent::Type postedTaskType() {
    static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
    return type;
}

/// Rounded up, so that a timer is never early, and kept in the range that a timer can take (24 days).
std::chrono::milliseconds wholeMilliseconds(Seconds duration) {
    constexpr double longest = std::numeric_limits<int>::max();
    return std::chrono::milliseconds(static_cast<int>(std::clamp(std::ceil(duration.count() * 1000.0), 0.0, longest)));
}

}  // namespace

/// Keeps the posted tasks, with one Qt event for each. The tasks have their own lock, because the thread sanitizer does
/// not see Qt's lock.
class QtMainLoop::PostedTasks final : public QObject {
public:
    void add(Task task) {
        {
            const std::scoped_lock guard(lock_);
            tasks_.push_back(std::move(task));
        }
        // High priority, because a key press must not wait for repaints.
        QCoreApplication::postEvent(this, new QEvent(postedTaskType()), Qt::HighEventPriority);
    }

    bool event(QEvent* event) override {
        if (event->type() != postedTaskType()) {
            return QObject::event(event);
        }
        takeFirst()();
        return true;
    }

private:
    /// There is one event for each task, so the queue is not empty.
    Task takeFirst() {
        const std::scoped_lock guard(lock_);
        Task task = std::move(tasks_.front());
        tasks_.pop_front();
        return task;
    }

    std::mutex lock_;
    std::deque<Task> tasks_;
};

/// All timers, on one receiver.
class QtMainLoop::Timers final : public QObject {
public:
    enum class Repeats { no, yes };

    int start(Seconds interval, Qt::TimerType type, Repeats repeats, Task task) {
        const int id = startTimer(wholeMilliseconds(interval), type);
        entries_.emplace(id, std::make_shared<const Entry>(Entry{std::move(task), repeats}));
        return id;
    }

    void cancel(int id, const std::weak_ptr<const void>& entry) {
        // The id of a one-shot timer may have been reused since it fired.
        const auto found = entries_.find(id);
        if (found != entries_.end() && found->second == entry.lock()) {
            killTimer(id);
            entries_.erase(found);
        }
    }

    [[nodiscard]] std::weak_ptr<const void> entry(int id) const { return entries_.at(id); }
    [[nodiscard]] std::size_t count() const { return entries_.size(); }

protected:
    void timerEvent(QTimerEvent* event) override {
        const auto found = entries_.find(event->timerId());
        if (found == entries_.end()) {
            return;
        }
        // Kept alive here, because the task may drop its token.
        const auto entry = found->second;
        if (entry->repeats == Repeats::no) {
            killTimer(event->timerId());
            entries_.erase(found);
        }
        entry->task();
    }

private:
    struct Entry {
        Task task;
        Repeats repeats;
    };
    std::unordered_map<int, std::shared_ptr<const Entry>> entries_;
};

QtMainLoop::QtMainLoop() : postedTasks_(std::make_unique<PostedTasks>()), timers_(std::make_shared<Timers>()) {}

QtMainLoop::~QtMainLoop() = default;

TimePoint QtMainLoop::now() const {
    return std::chrono::steady_clock::now();
}

WallTime QtMainLoop::wallTime() const {
    return std::chrono::system_clock::now();
}

void QtMainLoop::post(Task task) {
    postedTasks_->add(std::move(task));
}

Subscription QtMainLoop::after(Seconds delay, Task task) {
    assert(isMainThread());
    return token(timers_->start(delay, Qt::PreciseTimer, Timers::Repeats::no, std::move(task)));
}

Subscription QtMainLoop::every(Seconds interval, Task task) {
    assert(isMainThread());
    // Slow periodic timers may be off by 5 %, so that Qt can fire the program's timers together.
    const auto type = interval >= Seconds(1) ? Qt::CoarseTimer : Qt::PreciseTimer;
    return token(timers_->start(interval, type, Timers::Repeats::yes, std::move(task)));
}

Subscription QtMainLoop::token(int timerId) {
    return Subscription([timers = std::weak_ptr<Timers>(timers_), timerId, entry = timers_->entry(timerId)] {
        if (const auto alive = timers.lock()) {
            alive->cancel(timerId, entry);
        }
    });
}

bool QtMainLoop::isMainThread() const {
    return std::this_thread::get_id() == mainThread_;
}

std::size_t QtMainLoop::pendingTimerCount() const {
    return timers_->count();
}

namespace {

/// Workers mostly wait for other programs, so there may be more of them than processors.
constexpr int fewestThreads = 4;

}  // namespace

/// One call of `concurrentPerform`. Shared, because a helper may still be leaving when the caller has returned.
class QtBackgroundWork::SharedIterations {
public:
    SharedIterations(std::size_t count, const std::function<void(std::size_t)>& iteration)
        : count_(count), iteration_(iteration) {}

    /// Takes iterations until none is left.
    void work() {
        for (auto index = next_++; index < count_; index = next_++) {
            iteration_(index);
            const std::scoped_lock lock(mutex_);
            if (++endedCount_ == count_) {
                allEnded_.notify_all();
            }
        }
    }

    void waitForAll() {
        std::unique_lock lock(mutex_);
        allEnded_.wait(lock, [this] { return endedCount_ == count_; });
    }

private:
    const std::size_t count_;
    /// Belongs to the caller, which waits for every iteration that uses it.
    const std::function<void(std::size_t)>& iteration_;
    std::atomic<std::size_t> next_{0};
    std::mutex mutex_;
    std::condition_variable allEnded_;
    std::size_t endedCount_ = 0;
};

QtBackgroundWork::QtBackgroundWork() {
    pool_.setObjectName("ferrowyn-work");
    pool_.setMaxThreadCount(std::max(fewestThreads, QThread::idealThreadCount()));
}

QtBackgroundWork::~QtBackgroundWork() {
    pool_.clear();
    pool_.waitForDone();
}

/// Passes the work on under this class's lock, because the thread sanitizer does not see the lock of the pool.
void QtBackgroundWork::run(std::function<void()> work) {
    {
        const std::scoped_lock lock(mutex_);
        waiting_.push_back(std::move(work));
    }
    pool_.start([this] { runNext(); });
}

void QtBackgroundWork::runNext() {
    std::function<void()> work;
    {
        const std::scoped_lock lock(mutex_);
        work = std::move(waiting_.front());
        waiting_.pop_front();
    }
    work();
}

void QtBackgroundWork::concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) {
    if (count == 0) {
        return;
    }
    const auto shared = std::make_shared<SharedIterations>(count, iteration);
    std::uint64_t key = 0;
    {
        const std::scoped_lock lock(mutex_);
        key = nextKey_++;
        shared_.emplace(key, shared);
    }
    // Only threads that are free now help. The caller does iterations itself, so the call also ends without helpers,
    // and two callers cannot wait for each other.
    for (std::size_t helper = 1; helper < count; ++helper) {
        if (!pool_.tryStart([this, key] { helpWith(key); })) {
            break;
        }
    }
    shared->work();
    shared->waitForAll();
    const std::scoped_lock lock(mutex_);
    shared_.erase(key);
}

void QtBackgroundWork::helpWith(std::uint64_t key) {
    std::shared_ptr<SharedIterations> shared;
    {
        const std::scoped_lock lock(mutex_);
        const auto found = shared_.find(key);
        if (found == shared_.end()) {
            return;  // all was done without this helper
        }
        shared = found->second;
    }
    shared->work();
}

}  // namespace ferrowyn
