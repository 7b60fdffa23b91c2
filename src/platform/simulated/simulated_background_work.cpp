#include "platform/simulated/simulated_background_work.h"

#include <cassert>
#include <utility>

#include "platform/simulated/simulated_main_loop.h"

namespace ferrowyn {

SimulatedBackgroundWork::SimulatedBackgroundWork(SimulatedMainLoop& mainLoop) : mainLoop_(mainLoop) {
    mainLoop_.setIdleWork([this] { return runOne(); });
}

void SimulatedBackgroundWork::run(std::function<void()> work) {
    assert(mainLoop_.isMainThread());
    waiting_.push_back(std::move(work));
}

void SimulatedBackgroundWork::concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) {
    assert(!mainLoop_.isMainThread());
    for (std::size_t index = 0; index < count; ++index) {
        iteration(index);
    }
}

bool SimulatedBackgroundWork::runOne() {
    if (isHeld_ || waiting_.empty()) {
        return false;
    }
    const auto work = std::move(waiting_.front());
    waiting_.pop_front();
    mainLoop_.runAsWorker(work);
    return true;
}

}  // namespace ferrowyn
