#pragma once

#include <deque>
#include <functional>

#include "platform/background_work.h"

namespace ferrowyn {

class SimulatedMainLoop;

/// Workers that are played by the calling thread: the work runs, in the order in which it was asked for, when the loop
/// settles, and an iteration after the other, so that every run of a test is the same.
class SimulatedBackgroundWork final : public BackgroundWork {
public:
    explicit SimulatedBackgroundWork(SimulatedMainLoop& mainLoop);

    void run(std::function<void()> work) override;
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override;

    void hold(bool isHeld) { isHeld_ = isHeld; }
    [[nodiscard]] std::size_t waitingCount() const { return waiting_.size(); }

private:
    bool runOne();

    SimulatedMainLoop& mainLoop_;
    bool isHeld_ = false;
    std::deque<std::function<void()>> waiting_;
};

}  // namespace ferrowyn
