#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "platform/log.h"

namespace ferrowyn {

/// One message as it was written.
struct SimulatedLogLine {
    LogLevel level = LogLevel::standard;
    std::string category;
    std::string message;
    friend bool operator==(const SimulatedLogLine&, const SimulatedLogLine&) = default;
};

/// Keeps every message until a test takes it. Any thread.
class SimulatedLog final : public Log {
public:
    void write(LogLevel level, std::string_view category, std::string_view message) override;

    std::vector<SimulatedLogLine> take();

private:
    std::mutex lock_;
    std::vector<SimulatedLogLine> lines_;
};

}  // namespace ferrowyn
