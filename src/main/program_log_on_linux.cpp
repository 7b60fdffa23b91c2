#include "main/command_line.h"
#include "main/program_log.h"
#include "platform/linux/journal_log.h"

namespace ferrowyn {

std::unique_ptr<Log> makeProgramLog(const CommandLine& line) {
    return std::make_unique<JournalLog>(line.logLevel.value_or(LogLevel::standard),
                                        line.logLevel ? JournalLog::Mirror::always : JournalLog::Mirror::whenTerminal);
}

}  // namespace ferrowyn
