#include "platform/simulated/simulated_tap_run_loop.h"

namespace ferrowyn {

void SimulatedTapRunLoop::runFor(Seconds slice) {
    std::unique_lock lock(lock_);
    // An absolute moment on the system clock: thread sanitizers see into the wait this way.
    const auto end = std::chrono::system_clock::now() + std::chrono::duration_cast<std::chrono::microseconds>(slice);
    stopped_.wait_until(lock, end, [this] { return isStopped_; });
    isStopped_ = false;
}

void SimulatedTapRunLoop::stop() {
    const std::lock_guard lock(lock_);
    isStopped_ = true;
    stopped_.notify_all();
}

}  // namespace ferrowyn
