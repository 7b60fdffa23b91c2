#pragma once

#include <memory>

#include "platform/log.h"

namespace ferrowyn {

/// The unified log, with the bundle's identifier as the subsystem. Any thread.
class MacLog final : public Log {
public:
    MacLog();
    ~MacLog() override;
    MacLog(const MacLog&) = delete;
    MacLog& operator=(const MacLog&) = delete;

    void write(LogLevel level, std::string_view category, std::string_view message) override;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn
