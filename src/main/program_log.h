#pragma once

#include <iosfwd>
#include <memory>
#include <mutex>

#include "platform/log.h"

namespace ferrowyn {

struct CommandLine;

/// The log of this system, which goes to standard error too, in any case, for someone who asks for a level.
[[nodiscard]] std::unique_ptr<Log> makeProgramLog(const CommandLine& line);

/// Writes what it passes on to another log to a stream as well, one line a message, for someone who looks on: it waits
/// for whoever reads the stream. Any thread.
class MirroredLog final : public Log {
public:
    /// Messages below `minimumLevel` go to the other log alone. The stream outlives this.
    MirroredLog(std::unique_ptr<Log> log, LogLevel minimumLevel, std::ostream& mirror);

    void write(LogLevel level, std::string_view category, std::string_view message) override;

private:
    std::unique_ptr<Log> log_;
    LogLevel minimumLevel_;
    std::mutex mutex_;
    std::ostream& mirror_;
};

}  // namespace ferrowyn
