#include "main/program_log.h"

#include <ostream>
#include <string_view>
#include <utility>

#include "core/text_encoding.h"

namespace ferrowyn {

MirroredLog::MirroredLog(std::unique_ptr<Log> log, LogLevel minimumLevel, std::ostream& mirror)
    : log_(std::move(log)), minimumLevel_(minimumLevel), mirror_(mirror) {}

void MirroredLog::write(LogLevel level, std::string_view category, std::string_view message) {
    log_->write(level, category, message);
    if (level < minimumLevel_) {
        return;
    }
    const std::scoped_lock lock(mutex_);
    // Some messages quote other programs, whose text must not control the terminal.
    mirror_ << "ferrowyn: [" << category << "] " << text::withoutControls(message) << std::endl;
}

}  // namespace ferrowyn
