#pragma once

#include <chrono>

namespace ferrowyn::x11test {

using std::chrono::milliseconds;

/// How long a wait may take before it counts as failed. Generous: a wait ends as soon as its event arrives, so only a
/// failing test ever spends it, and a loaded machine must not make one fail.
inline constexpr milliseconds patience{10000};

/// A moment until which to wait.
class Deadline {
public:
    explicit Deadline(milliseconds budget) : end_(std::chrono::steady_clock::now() + budget) {}

    /// What is left, never negative; in the form that poll() takes.
    [[nodiscard]] int remainingMilliseconds() const {
        const auto left = std::chrono::duration_cast<milliseconds>(end_ - std::chrono::steady_clock::now()).count();
        return left > 0 ? static_cast<int>(left) : 0;
    }
    [[nodiscard]] bool hasPassed() const { return std::chrono::steady_clock::now() >= end_; }

private:
    std::chrono::steady_clock::time_point end_;
};

}  // namespace ferrowyn::x11test
