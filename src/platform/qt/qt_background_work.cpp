#include "platform/qt/qt_background_work.h"

#include <QThread>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>

namespace ferrowyn {

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
    /// The caller's; only used for iterations that the caller waits for.
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

/// Handed over under a lock of our own, which the thread sanitizer sees; the pool's it does not.
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
    // Only threads that are free right now help: the caller takes part itself, so it ends even when there is none, and
    // two callers at once cannot wait for each other.
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
