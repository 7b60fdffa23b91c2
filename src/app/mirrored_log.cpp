#include "app/mirrored_log.h"

#include <ostream>
#include <string_view>
#include <utility>

namespace ferrowyn {

namespace {

/// Some messages quote what other programs say; none of it may command the terminal.
void writePrintable(std::ostream& stream, std::string_view text) {
    const auto isBetween = [&text](std::size_t at, unsigned char first, unsigned char last) {
        return at < text.size() && static_cast<unsigned char>(text[at]) >= first &&
               static_cast<unsigned char>(text[at]) <= last;
    };
    for (std::size_t at = 0; at < text.size(); ++at) {
        // A second set of controls is written as two bytes.
        const bool isTwoByteControl = isBetween(at, 0xC2, 0xC2) && isBetween(at + 1, 0x80, 0x9F);
        if (isTwoByteControl || isBetween(at, 0x00, 0x1F) || isBetween(at, 0x7F, 0x7F)) {
            stream << '?';
            at += isTwoByteControl ? 1 : 0;
        } else {
            stream << text[at];
        }
    }
}

}  // namespace

MirroredLog::MirroredLog(std::unique_ptr<Log> log, LogLevel minimumLevel, std::ostream& mirror)
    : log_(std::move(log)), minimumLevel_(minimumLevel), mirror_(mirror) {}

void MirroredLog::write(LogLevel level, std::string_view category, std::string_view message) {
    log_->write(level, category, message);
    if (level < minimumLevel_) {
        return;
    }
    const std::scoped_lock lock(mutex_);
    mirror_ << "ferrowyn: [" << category << "] ";
    writePrintable(mirror_, message);
    mirror_ << std::endl;
}

}  // namespace ferrowyn
