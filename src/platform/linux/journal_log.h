#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "platform/log.h"

namespace ferrowyn {

/// Writes to the systemd journal, and to standard error when that is a terminal. Any thread may call it; a writer
/// thread does the writing, because the journal and a terminal may be slow. When too many lines wait, further ones are
/// dropped and their number is logged.
class JournalLog final : public Log {
public:
    enum class Mirror { whenTerminal, always, never };

    /// Messages below `minimumLevel` are dropped.
    JournalLog(LogLevel minimumLevel, Mirror mirror);
    /// Writes the waiting lines first.
    ~JournalLog() override;
    JournalLog(const JournalLog&) = delete;
    JournalLog& operator=(const JournalLog&) = delete;

    void write(LogLevel level, std::string_view category, std::string_view message) override;

private:
    struct Line {
        LogLevel level = LogLevel::standard;
        std::string category;
        std::string message;
    };

    void runWriter();
    void deliver(const Line& line) const;

    LogLevel minimumLevel_;
    bool mirrorsToStandardError_;
    std::mutex mutex_;
    std::condition_variable hasWork_;
    std::deque<Line> waiting_;
    std::size_t droppedCount_ = 0;
    bool isEnding_ = false;
    std::thread writer_;
};

}  // namespace ferrowyn
