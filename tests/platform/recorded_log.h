#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/log.h"

namespace ferrowyn {

/// Keeps what is logged, from any thread. Also for what needs a log that no test reads.
class RecordedLog final : public Log {
public:
    void write(LogLevel level, std::string_view /*category*/, std::string_view message) override {
        const std::scoped_lock lock(mutex_);
        (level == LogLevel::error ? errors_ : others_).emplace_back(message);
    }
    [[nodiscard]] std::vector<std::string> errors() const {
        const std::scoped_lock lock(mutex_);
        return errors_;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> errors_;
    std::vector<std::string> others_;
};

}  // namespace ferrowyn
