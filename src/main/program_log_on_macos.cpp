#include <iostream>
#include <utility>

#include "main/command_line.h"
#include "main/program_log.h"
#include "platform/macos/mac_system_services.h"

namespace ferrowyn {

std::unique_ptr<Log> makeProgramLog(const CommandLine& line) {
    auto log = std::make_unique<MacLog>();
    if (!line.logLevel) {
        return log;
    }
    return std::make_unique<MirroredLog>(std::move(log), *line.logLevel, std::cerr);
}

}  // namespace ferrowyn
