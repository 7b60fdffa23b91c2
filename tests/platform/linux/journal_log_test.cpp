#include "platform/linux/journal_log.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <thread>

namespace ferrowyn {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

/// What a log writes to standard error until it is destroyed.
std::string mirrored(LogLevel minimumLevel, JournalLog::Mirror mirror, const std::function<void(Log&)>& write) {
    testing::internal::CaptureStderr();
    {
        JournalLog log(minimumLevel, mirror);
        write(log);
    }
    return testing::internal::GetCapturedStderr();
}

void writeOneOfEach(Log& log) {
    log.write(LogLevel::debug, "input", "details");
    log.write(LogLevel::standard, "permissions", "Services active");
    log.write(LogLevel::error, "windows", "two\nlines");
}

TEST(JournalLogTest, MirrorsWhatIsSevereEnoughInOrder) {
    const auto always = JournalLog::Mirror::always;
    EXPECT_EQ(mirrored(LogLevel::debug, always, writeOneOfEach),
              "input: details\npermissions: Services active\nwindows: error: two lines\n");
    EXPECT_EQ(mirrored(LogLevel::standard, always, writeOneOfEach),
              "permissions: Services active\nwindows: error: two lines\n");
    EXPECT_EQ(mirrored(LogLevel::error, always, writeOneOfEach), "windows: error: two lines\n");
}

TEST(JournalLogTest, NoMessageCommandsTheTerminal) {
    const auto said = mirrored(LogLevel::standard, JournalLog::Mirror::always, [](Log& log) {
        log.write(LogLevel::standard, "activation", "\x1B]0;owned\x07 \xC2\x9B in \xC3\xA4");
    });
    EXPECT_EQ(said, "activation: ?]0;owned? ? in \xC3\xA4\n");
}

TEST(JournalLogTest, StaysSilentWhereNobodyLooks) {
    EXPECT_THAT(mirrored(LogLevel::debug, JournalLog::Mirror::whenTerminal, writeOneOfEach), IsEmpty());
    EXPECT_THAT(mirrored(LogLevel::debug, JournalLog::Mirror::never, writeOneOfEach), IsEmpty());
}

TEST(JournalLogTest, MirrorsToATerminal) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(grantpt(terminal), 0);
    ASSERT_EQ(unlockpt(terminal), 0);
    const int userSide = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    ASSERT_GE(userSide, 0);
    const int standardError = dup(STDERR_FILENO);
    dup2(userSide, STDERR_FILENO);
    {
        JournalLog log(LogLevel::standard, JournalLog::Mirror::whenTerminal);
        writeOneOfEach(log);
    }
    dup2(standardError, STDERR_FILENO);
    std::array<char, 1024> text{};
    const auto length = read(terminal, text.data(), text.size());
    close(standardError);
    close(userSide);
    close(terminal);
    ASSERT_GT(length, 0);
    EXPECT_THAT(std::string(text.data(), static_cast<std::size_t>(length)), HasSubstr("permissions: Services active"));
}

TEST(JournalLogTest, TakesLinesFromManyThreads) {
    const auto text = mirrored(LogLevel::debug, JournalLog::Mirror::always, [](Log& log) {
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&log] {
                for (int line = 0; line < 100; ++line) {
                    log.write(LogLevel::standard, "input", "line");
                }
            });
        }
        for (auto& thread : threads) {
            thread.join();
        }
    });
    EXPECT_EQ(std::ranges::count(text, '\n'), 400);
}

}  // namespace
}  // namespace ferrowyn
