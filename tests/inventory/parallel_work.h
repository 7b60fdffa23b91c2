#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

#include "platform/background_work.h"

namespace ferrowyn {

/// Iterations on real threads, so that a race between them is there to be found.
class ParallelWork final : public BackgroundWork {
public:
    void run(std::function<void()> work) override { work(); }

    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override {
        std::atomic<std::size_t> next = 0;
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&] {
                for (std::size_t index = next++; index < count; index = next++) {
                    iteration(index);
                }
            });
        }
    }
};

}  // namespace ferrowyn
