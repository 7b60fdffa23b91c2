#include "platform/qt/qt_main_loop.h"

#include <atomic>
#include <latch>
#include <memory>
#include <mutex>
#include <set>
#include <thread>

namespace ferrowyn {
namespace {

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
