#include "platform/qt/qt_main_loop.h"

#include <QEventLoop>
#include <atomic>
#include <chrono>
#include <latch>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <thread>

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class QtMainLoopTest : public testing::Test {
protected:
    void run() { events.exec(); }
    void stop() { events.quit(); }

    QEventLoop events;
    std::optional<QtMainLoop> loop{std::in_place};
};

TEST_F(QtMainLoopTest, TheCalendarIsTheSystems) {
    const WallTime before = std::chrono::system_clock::now();
    const auto now = loop->wallTime();
    EXPECT_GE(now, before);
    EXPECT_LE(now, WallTime(std::chrono::system_clock::now()));
}

TEST_F(QtMainLoopTest, RunsPostedTasksInOrderAndNeverBeforePostReturns) {
    std::vector<int> order;
    for (int number = 1; number <= 3; ++number) {
        loop->post([&order, number] { order.push_back(number); });
    }
    EXPECT_THAT(order, IsEmpty());
    loop->post([this] { stop(); });
    run();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(QtMainLoopTest, ATaskPostedByATaskRunsAfterThoseThatWait) {
    std::vector<int> order;
    loop->post([&] {
        order.push_back(1);
        loop->post([&] {
            order.push_back(3);
            stop();
        });
    });
    loop->post([&] { order.push_back(2); });
    run();
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST_F(QtMainLoopTest, TakesTasksFromAnotherThreadInTheirOrder) {
    std::vector<int> numbers;
    bool wasMainThread = true;
    std::thread other([&] {
        EXPECT_FALSE(loop->isMainThread());
        for (int number = 0; number < 1000; ++number) {
            loop->post([&, number] {
                wasMainThread = wasMainThread && loop->isMainThread();
                numbers.push_back(number);
            });
        }
        loop->post([this] { stop(); });
    });
    run();
    other.join();
    ASSERT_EQ(numbers.size(), 1000U);
    EXPECT_TRUE(std::ranges::is_sorted(numbers));
    EXPECT_TRUE(wasMainThread);
}

TEST_F(QtMainLoopTest, ATimerIsNeverEarlyAndFiresOnce) {
    const auto start = loop->now();
    int count = 0;
    const auto once = loop->after(0.0301s, [&] {
        ++count;
        EXPECT_GE(loop->now() - start, 0.0301s);
    });
    const auto end = loop->after(0.1s, [this] { stop(); });
    run();
    EXPECT_EQ(count, 1);
    EXPECT_EQ(loop->pendingTimerCount(), 0U);
}

TEST_F(QtMainLoopTest, RepeatsUntilTheTaskDropsItsOwnToken) {
    int count = 0;
    Subscription token = loop->every(0.005s, [&] {
        if (++count == 3) {
            token.reset();
            stop();
        }
    });
    run();
    EXPECT_EQ(count, 3);
    EXPECT_EQ(loop->pendingTimerCount(), 0U);
}

TEST_F(QtMainLoopTest, ADroppedTokenCancels) {
    bool hasRun = false;
    {
        const auto once = loop->after(0.001s, [&] { hasRun = true; });
        const auto repeated = loop->every(0.001s, [&] { hasRun = true; });
        EXPECT_EQ(loop->pendingTimerCount(), 2U);
    }
    EXPECT_EQ(loop->pendingTimerCount(), 0U);
    const auto end = loop->after(0.03s, [this] { stop(); });
    run();
    EXPECT_FALSE(hasRun);
}

TEST_F(QtMainLoopTest, TheTokenOfAFiredTimerEndsNoOther) {
    auto fired = loop->after(0s, [this] { stop(); });
    run();
    bool hasRun = false;
    // The toolkit hands the number of the fired timer out again.
    const auto next = loop->after(0.001s, [&] {
        hasRun = true;
        stop();
    });
    fired.reset();
    ASSERT_EQ(loop->pendingTimerCount(), 1U);
    run();
    EXPECT_TRUE(hasRun);
}

TEST_F(QtMainLoopTest, ATokenMayOutliveTheLoop) {
    auto token = loop->after(1s, [] {});
    loop->post([] { FAIL() << "the loop is gone"; });
    loop.reset();
    token.reset();
    events.processEvents();
}

TEST_F(QtMainLoopTest, TheClockMovesForward) {
    const auto before = loop->now();
    EXPECT_GE(loop->now(), before);
}

TEST(QtBackgroundWork, RunsWorkOnAnotherThread) {
    std::thread::id worker;
    {
        QtBackgroundWork work;
        std::latch done(1);
        work.run([&] {
            worker = std::this_thread::get_id();
            done.count_down();
        });
        done.wait();
    }
    EXPECT_NE(worker, std::thread::id());
    EXPECT_NE(worker, std::this_thread::get_id());
}

TEST(QtBackgroundWork, PerformsEachIterationOnce) {
    QtBackgroundWork work;
    std::vector<std::atomic<int>> counts(200);
    std::latch done(1);
    work.run([&] {
        work.concurrentPerform(counts.size(), [&](std::size_t index) { ++counts[index]; });
        work.concurrentPerform(0, [](std::size_t) { FAIL() << "there is nothing to do"; });
        done.count_down();
    });
    done.wait();
    for (const auto& count : counts) {
        EXPECT_EQ(count, 1);
    }
}

TEST(QtBackgroundWork, IterationsRunSeveralAtATime) {
    QtBackgroundWork work;
    std::latch done(1);
    work.run([&] {
        // Neither iteration ends before the other has begun.
        std::latch bothBegan(2);
        work.concurrentPerform(2, [&](std::size_t) { bothBegan.arrive_and_wait(); });
        done.count_down();
    });
    done.wait();
}

TEST(QtBackgroundWork, ManyCallersAtOnceDoNotWaitForEachOther) {
    QtBackgroundWork work;
    constexpr int callers = 32;
    std::atomic<int> iterations = 0;
    std::latch done(callers);
    for (int caller = 0; caller < callers; ++caller) {
        work.run([&] {
            work.concurrentPerform(8, [&](std::size_t) { ++iterations; });
            done.count_down();
        });
    }
    done.wait();
    EXPECT_EQ(iterations, callers * 8);
}

TEST(QtBackgroundWork, WaitsForStartedWorkAndDropsTheRest) {
    std::atomic<int> started = 0;
    std::atomic<int> ended = 0;
    std::latch mayEnd(1);
    auto work = std::make_unique<QtBackgroundWork>();
    std::latch oneStarted(1);
    std::once_flag once;
    for (int task = 0; task < 1000; ++task) {
        work->run([&] {
            ++started;
            std::call_once(once, [&] { oneStarted.count_down(); });
            mayEnd.wait();
            ++ended;
        });
    }
    oneStarted.wait();
    std::thread destroyer([&] { work.reset(); });
    mayEnd.count_down();
    destroyer.join();
    EXPECT_EQ(started, ended);
    EXPECT_GE(ended, 1);
}

}  // namespace
}  // namespace ferrowyn
