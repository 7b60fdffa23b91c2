#include "platform/linux/journal_log.h"

#include <poll.h>
#include <syslog.h>
#include <systemd/sd-journal.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "core/text_encoding.h"

namespace ferrowyn {

namespace {

/// In lines. The program writes far fewer while a slow reader catches up.
constexpr std::size_t longestQueue = 1000;
/// A terminal that the user has stopped (Ctrl+S) must not keep the program from ending.
constexpr int terminalPatienceMilliseconds = 100;

int journalPriority(LogLevel level) {
    switch (level) {
        case LogLevel::debug:
            return LOG_DEBUG;
        case LogLevel::error:
            return LOG_ERR;
        case LogLevel::standard:
            break;
    }
    return LOG_NOTICE;
}

void writeToStandardError(std::string_view text) {
    while (!text.empty()) {
        pollfd terminal{.fd = STDERR_FILENO, .events = POLLOUT, .revents = 0};
        if (poll(&terminal, 1, terminalPatienceMilliseconds) <= 0) {
            return;
        }
        const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
        if (written <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool shouldMirror(JournalLog::Mirror mirror) {
    return mirror == JournalLog::Mirror::always ||
           (mirror == JournalLog::Mirror::whenTerminal && isatty(STDERR_FILENO) == 1);
}

}  // namespace

JournalLog::JournalLog(LogLevel minimumLevel, Mirror mirror)
    : minimumLevel_(minimumLevel), mirrorsToStandardError_(shouldMirror(mirror)), writer_([this] { runWriter(); }) {}

JournalLog::~JournalLog() {
    {
        const std::scoped_lock lock(mutex_);
        isEnding_ = true;
    }
    hasWork_.notify_one();
    writer_.join();
}

void JournalLog::write(LogLevel level, std::string_view category, std::string_view message) {
    if (level < minimumLevel_) {
        return;
    }
    {
        const std::scoped_lock lock(mutex_);
        if (waiting_.size() >= longestQueue) {
            ++droppedCount_;
            return;
        }
        waiting_.push_back({level, std::string(category), std::string(message)});
    }
    hasWork_.notify_one();
}

void JournalLog::runWriter() {
    std::unique_lock lock(mutex_);
    while (true) {
        hasWork_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
        if (waiting_.empty()) {
            return;
        }
        auto lines = std::exchange(waiting_, {});
        if (const auto dropped = std::exchange(droppedCount_, 0); dropped > 0) {
            lines.push_back({LogLevel::error, "ui", std::to_string(dropped) + " log messages were dropped"});
        }
        lock.unlock();
        for (const auto& line : lines) {
            deliver(line);
        }
        lock.lock();
    }
}

void JournalLog::deliver(const Line& line) const {
    // Without a journal this fails. There is no other place to report that.
    sd_journal_send("MESSAGE=%s", line.message.c_str(), "PRIORITY=%i", journalPriority(line.level),
                    "SYSLOG_IDENTIFIER=%s", "ferrowyn", "FERROWYN_CATEGORY=%s", line.category.c_str(), nullptr);
    if (mirrorsToStandardError_) {
        std::string text = line.category + (line.level == LogLevel::error ? ": error: " : ": ") + line.message;
        std::ranges::replace(text, '\n', ' ');
        // Messages may contain texts of other programs. Control characters in them must not reach the terminal.
        writeToStandardError(text::withoutControls(text) + "\n");
    }
}

}  // namespace ferrowyn
