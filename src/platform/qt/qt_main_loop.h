#pragma once

#include <cstddef>
#include <memory>
#include <thread>

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

    /// How many timers are waiting.
    [[nodiscard]] std::size_t pendingTimerCount() const;

private:
    class PostedTasks;
    class Timers;

    [[nodiscard]] Subscription token(int timerId);

    std::thread::id mainThread_ = std::this_thread::get_id();
    std::unique_ptr<PostedTasks> postedTasks_;
    /// Shared with the tokens, weakly: a token may outlive the loop.
    std::shared_ptr<Timers> timers_;
};

}  // namespace ferrowyn
