#pragma once

#include <QThreadPool>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "platform/background_work.h"

namespace ferrowyn {

/// Worker threads in a pool of their own, so that nothing else that uses Qt's global pool can hold up a snapshot.
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
    /// What no worker has begun yet, first come first.
    std::deque<std::function<void()>> waiting_;
    std::uint64_t nextKey_ = 0;
    /// What helpers are handed goes through this class's own lock: the pool's is out of the thread sanitizer's sight.
    std::unordered_map<std::uint64_t, std::shared_ptr<SharedIterations>> shared_;
    QThreadPool pool_;
};

}  // namespace ferrowyn
