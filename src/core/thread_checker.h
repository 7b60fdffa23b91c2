#pragma once

#include <thread>

namespace ferrowyn {

/// Finds out whether something that is for one thread is used on one only: the one of its first use. For assertions; it
/// makes nothing safe.
class ThreadChecker {
public:
    [[nodiscard]] bool isOnItsThread() {
        const auto current = std::this_thread::get_id();
        if (thread_ == std::thread::id()) {
            thread_ = current;
        }
        return thread_ == current;
    }

private:
    std::thread::id thread_;
};

}  // namespace ferrowyn
