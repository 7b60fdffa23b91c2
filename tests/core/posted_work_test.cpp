#include "core/posted_work.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Keeps posted tasks until the test runs them.
struct TaskQueue {
    std::vector<std::function<void()>> tasks;

    PostTask post() {
        return [this](std::function<void()> task) { tasks.push_back(std::move(task)); };
    }
    void run() {
        for (const auto& task : std::exchange(tasks, {})) {
            task();
        }
    }
};

TEST(LifeToken, AGuardedCallbackGetsItsArguments) {
    const LifeToken life;
    std::vector<std::string> calls;
    const auto guarded =
        life.guard([&](const std::string& text, int count) { calls.push_back(text + std::to_string(count)); });
    auto callback = std::function<void(const std::string&, int)>(guarded);
    callback("a", 1);
    callback("b", 2);
    EXPECT_THAT(calls, ElementsAre("a1", "b2"));
}

TEST(LifeToken, AGuardedCallbackDoesNothingAfterTheTokensEnd) {
    auto life = std::make_optional<LifeToken>();
    int calls = 0;
    std::function<void()> callback = life->guard([&] { ++calls; });
    callback();
    life.reset();
    callback();
    EXPECT_EQ(calls, 1);
}

TEST(CoalescedTask, RunsOnceForManyRequestsAndNeverAtOnce) {
    TaskQueue queue;
    int runs = 0;
    CoalescedTask task(queue.post(), [&] { ++runs; });
    task.request();
    task.request();
    EXPECT_EQ(runs, 0);
    EXPECT_EQ(queue.tasks.size(), 1U);
    queue.run();
    EXPECT_EQ(runs, 1);
    task.request();
    queue.run();
    EXPECT_EQ(runs, 2);
}

TEST(CoalescedTask, WorkMayAskForItselfAgain) {
    TaskQueue queue;
    int runs = 0;
    std::optional<CoalescedTask> task;
    task.emplace(queue.post(), [&] {
        if (++runs < 3) {
            task->request();
        }
    });
    task->request();
    queue.run();
    EXPECT_EQ(runs, 1) << "the second run has a turn of the loop to itself";
    queue.run();
    queue.run();
    EXPECT_EQ(runs, 3);
    EXPECT_THAT(queue.tasks, IsEmpty());
}

TEST(CoalescedTask, ARequestThatIsTakenBackDoesNothing) {
    TaskQueue queue;
    int runs = 0;
    CoalescedTask task(queue.post(), [&] { ++runs; });
    task.request();
    task.cancel();
    queue.run();
    EXPECT_EQ(runs, 0);
    task.request();
    task.cancel();
    task.request();
    queue.run();
    EXPECT_EQ(runs, 1);
}

TEST(CoalescedTask, ATaskThatIsRunAfterItsEndDoesNothing) {
    TaskQueue queue;
    int runs = 0;
    {
        CoalescedTask task(queue.post(), [&] { ++runs; });
        task.request();
    }
    queue.run();
    EXPECT_EQ(runs, 0);
}

}  // namespace
}  // namespace ferrowyn
