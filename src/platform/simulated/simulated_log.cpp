#include "platform/simulated/simulated_log.h"

#include <utility>

namespace ferrowyn {

void SimulatedLog::write(LogLevel level, std::string_view category, std::string_view message) {
    const std::lock_guard lock(lock_);
    lines_.push_back({level, std::string(category), std::string(message)});
}

std::vector<SimulatedLogLine> SimulatedLog::take() {
    const std::lock_guard lock(lock_);
    return std::exchange(lines_, {});
}

}  // namespace ferrowyn
