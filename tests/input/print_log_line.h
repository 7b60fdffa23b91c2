#pragma once

#include <ostream>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {

/// What a failed expectation shows of a log line.
inline void PrintTo(const SimulatedLogLine& line, std::ostream* stream) {
    *stream << static_cast<int>(line.level) << " " << line.category << ": " << line.message;
}

}  // namespace ferrowyn
