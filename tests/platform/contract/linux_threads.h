#pragma once

#include <pthread.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <thread>

namespace ferrowyn::contract {

/// Refuses the process every new thread while it lives: by default one gets a stack that no address space has room for.
class RefusedThreads {
public:
    RefusedThreads() {
        pthread_getattr_default_np(&usual_);
        pthread_attr_t refused;
        pthread_getattr_default_np(&refused);
        pthread_attr_setstacksize(&refused, std::size_t{1} << 50U);
        pthread_setattr_default_np(&refused);
        pthread_attr_destroy(&refused);
    }
    ~RefusedThreads() {
        pthread_setattr_default_np(&usual_);
        pthread_attr_destroy(&usual_);
    }
    RefusedThreads(const RefusedThreads&) = delete;
    RefusedThreads& operator=(const RefusedThreads&) = delete;

private:
    pthread_attr_t usual_{};
};

/// The thread sanitizer starts a thread for itself together with the first one. It must not come between two counts.
inline const bool hadAThread = [] {
    std::thread([] {}).join();
    return true;
}();

/// The threads of this process.
inline std::ptrdiff_t threadCount() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

/// Whether there are no more threads than this, or soon are not: one that has been waited for is listed until the
/// kernel has cleared it away.
inline bool soonHasThreads(std::ptrdiff_t count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (threadCount() > count && std::chrono::steady_clock::now() < end) {
        std::this_thread::yield();
    }
    return threadCount() <= count;
}

}  // namespace ferrowyn::contract
