#pragma once

#include <iosfwd>
#include <memory>
#include <mutex>

#include "platform/log.h"

namespace ferrowyn {

struct CommandLine;

/// The log of this system. When the user chose a log level, the messages also go to standard error.
[[nodiscard]] std::unique_ptr<Log> makeProgramLog(const CommandLine& line);

/// Passes messages to another log and also writes them to a stream, one line for each. It may wait for the reader of
/// the stream. Any thread.
class MirroredLog final : public Log {
public:
    /// Messages below `minimumLevel` go only to the other log. The stream outlives this object.
    MirroredLog(std::unique_ptr<Log> log, LogLevel minimumLevel, std::ostream& mirror);

    void write(LogLevel level, std::string_view category, std::string_view message) override;

private:
    std::unique_ptr<Log> log_;
    LogLevel minimumLevel_;
    std::mutex mutex_;
    std::ostream& mirror_;
};

}  // namespace ferrowyn
