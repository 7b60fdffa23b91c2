#pragma once

#include <QThreadPool>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "platform/main_loop.h"

namespace ferrowyn {

/// The main loop on Qt's event loop. Made on the main thread after the QCoreApplication and destroyed before it; tasks
/// and timers that are still waiting then are dropped.
class QtMainLoop final : public MainLoop {
public:
    QtMainLoop();
    ~QtMainLoop() override;
    QtMainLoop(const QtMainLoop&) = delete;
    QtMainLoop& operator=(const QtMainLoop&) = delete;

    [[nodiscard]] TimePoint now() const override;
    [[nodiscard]] WallTime wallTime() const override;
    void post(Task task) override;
    [[nodiscard]] Subscription after(Seconds delay, Task task) override;
    [[nodiscard]] Subscription every(Seconds interval, Task task) override;
    [[nodiscard]] bool isMainThread() const override;

    /// The number of waiting timers.
    [[nodiscard]] std::size_t pendingTimerCount() const;

private:
    class PostedTasks;
    class Timers;

    [[nodiscard]] Subscription token(int timerId);

    std::thread::id mainThread_ = std::this_thread::get_id();
    std::unique_ptr<PostedTasks> postedTasks_;
    /// The tokens hold it weakly, because a token may outlive the loop.
    std::shared_ptr<Timers> timers_;
};

/// Worker threads in a separate pool, so that users of Qt's global pool cannot delay a snapshot.
class QtBackgroundWork final : public BackgroundWork {
public:
    QtBackgroundWork();
    ~QtBackgroundWork() override;
    QtBackgroundWork(const QtBackgroundWork&) = delete;
    QtBackgroundWork& operator=(const QtBackgroundWork&) = delete;

    void run(std::function<void()> work) override;
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override;

private:
    class SharedIterations;

    void runNext();
    void helpWith(std::uint64_t key);

    std::mutex mutex_;
    /// The work that no worker has begun yet, oldest first.
    std::deque<std::function<void()>> waiting_;
    std::uint64_t nextKey_ = 0;
    /// The helpers get their work under this class's lock, because the thread sanitizer does not see the lock of the
    /// pool.
    std::unordered_map<std::uint64_t, std::shared_ptr<SharedIterations>> shared_;
    QThreadPool pool_;
};

}  // namespace ferrowyn
