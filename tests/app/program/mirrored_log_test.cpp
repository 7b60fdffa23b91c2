#include "main/program_log.h"

#include <sstream>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

/// Hands everything to a log that outlives it.
class BorrowedLog final : public Log {
public:
    explicit BorrowedLog(Log& log) : log_(log) {}
    void write(LogLevel level, std::string_view category, std::string_view message) override {
        log_.write(level, category, message);
    }

private:
    Log& log_;
};

TEST(MirroredLogTest, TheStreamGetsWhatIsLoudEnoughAndTheOtherLogEverything) {
    SimulatedDesktop desktop;
    std::ostringstream stream;
    MirroredLog log(std::make_unique<BorrowedLog>(desktop.platform().log), LogLevel::standard, stream);
    log.write(LogLevel::debug, "ui", "quiet");
    log.write(LogLevel::standard, "permissions", "Services active");
    log.write(LogLevel::error, "input", "CGEvent.tapCreate failed");
    EXPECT_EQ(stream.str(), "ferrowyn: [permissions] Services active\nferrowyn: [input] CGEvent.tapCreate failed\n");
    const auto lines = desktop.takeLog();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines.front().message, "quiet");
    EXPECT_EQ(lines.front().category, "ui");
    EXPECT_EQ(lines.back().level, LogLevel::error);
}

TEST(MirroredLogTest, NoMessageCommandsTheTerminal) {
    SimulatedDesktop desktop;
    std::ostringstream stream;
    MirroredLog log(std::make_unique<BorrowedLog>(desktop.platform().log), LogLevel::standard, stream);
    log.write(LogLevel::error, "ui", "a\x1B[31m b\r\n\tc\x7F \u009B d é €");
    EXPECT_EQ(stream.str(), "ferrowyn: [ui] a?[31m b???c? ? d é €\n");
}

}  // namespace
}  // namespace ferrowyn
