#pragma once

#include <condition_variable>
#include <mutex>

#include "platform/event_tap.h"

namespace ferrowyn {

/// The loop of a real tap thread. Nothing comes in through it, as the simulated keys are delivered in the thread that
/// presses them; it only waits out its slices, in real time.
class SimulatedTapRunLoop final : public TapRunLoop {
public:
    void runFor(Seconds slice) override;
    /// A stop that comes between two slices ends the next one, so that no thread sleeps through it.
    void stop() override;

private:
    std::mutex lock_;
    std::condition_variable stopped_;
    bool isStopped_ = false;
};

}  // namespace ferrowyn
