#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

#include "platform/main_loop.h"

namespace ferrowyn {

/// Iterations on real threads, so that a race between them is there to be found.
class ParallelWork final : public BackgroundWork {
public:
    void run(std::function<void()> work) override { work(); }

    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override {
        std::atomic<std::size_t> next = 0;
        Threads threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.all.emplace_back([&] {
                for (std::size_t index = next++; index < count; index = next++) {
                    iteration(index);
                }
            });
        }
    }

private:
    /// Joined at the end. (Apple's library has a std::jthread only of late.)
    struct Threads {
        Threads() = default;
        ~Threads() {
            for (std::thread& thread : all) {
                thread.join();
            }
        }
        Threads(const Threads&) = delete;
        Threads& operator=(const Threads&) = delete;

        std::vector<std::thread> all;
    };
};

}  // namespace ferrowyn
