#pragma once

#include <memory>

namespace ferrowyn {

struct CommandLine;
class Log;

/// The log of this system, which goes to standard error too, in any case, for someone who asks for a level.
[[nodiscard]] std::unique_ptr<Log> makeProgramLog(const CommandLine& line);

}  // namespace ferrowyn
