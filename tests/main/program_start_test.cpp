#include "main/command_line.h"

#include <sstream>

#include "main/other_instance.h"
#include "main/program_log.h"
#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

using testing::HasSubstr;
using Desktop = CommandLine::Desktop;

CommandLine line(const std::vector<const char*>& arguments, Desktop native = Desktop::x11) {
    return std::get<CommandLine>(parseCommandLine(arguments, native));
}

std::string error(const std::vector<const char*>& arguments, Desktop native = Desktop::x11) {
    return std::get<CommandLineError>(parseCommandLine(arguments, native)).message;
}

std::string help(Desktop native = Desktop::x11) {
    return std::string(helpText(native));
}

TEST(CommandLineTest, WithoutArgumentsTheProgramRunsOnX11) {
    EXPECT_EQ(line({}), CommandLine{});
    EXPECT_EQ(line({}).action, CommandLine::Action::run);
    EXPECT_EQ(line({}).desktop, CommandLine::Desktop::x11);
    EXPECT_EQ(line({}).logLevel, std::nullopt);
}

TEST(CommandLineTest, TheDoctorWinsOverEverythingElseThatIsAsked) {
    EXPECT_EQ(line({"--doctor"}).action, CommandLine::Action::examineSession);
    EXPECT_EQ(line({"--log-level=debug", "--doctor", "--platform=simulated"}),
              CommandLine{.action = CommandLine::Action::examineSession});
    EXPECT_EQ(line({"--show", "--doctor"}), CommandLine{.action = CommandLine::Action::examineSession});
    EXPECT_EQ(error({"--doctor=x"}), "unknown option \"--doctor=x\"");
    EXPECT_THAT(help(), HasSubstr("--doctor"));
}

TEST(CommandLineTest, ReadsTheDesktop) {
    EXPECT_EQ(line({"--platform=x11"}).desktop, CommandLine::Desktop::x11);
    EXPECT_EQ(line({"--platform=simulated"}).desktop, CommandLine::Desktop::simulated);
    EXPECT_EQ(line({"--platform", "simulated"}).desktop, CommandLine::Desktop::simulated);
    EXPECT_EQ(line({"--platform=x11", "--platform=simulated"}).desktop, CommandLine::Desktop::simulated);
}

TEST(CommandLineTest, ReadsTheLogLevel) {
    EXPECT_EQ(line({"--log-level=debug"}).logLevel, LogLevel::debug);
    EXPECT_EQ(line({"--log-level=default"}).logLevel, LogLevel::standard);
    EXPECT_EQ(line({"--log-level", "error"}).logLevel, LogLevel::error);
}

TEST(CommandLineTest, ReadsWhatToAskOfTheProgramThatRuns) {
    EXPECT_EQ(line({}).request, std::nullopt);
    EXPECT_EQ(line({"--show"}).request, ProgramRequest::openSwitcher);
    EXPECT_EQ(line({"--settings"}).request, ProgramRequest::openSettings);
    EXPECT_EQ(line({"--setup"}).request, ProgramRequest::openSetup);
    EXPECT_EQ(line({"--quit"}).request, ProgramRequest::quit);
    EXPECT_EQ(line({"--show", "--log-level=debug", "--quit"}).request, ProgramRequest::quit);
    EXPECT_EQ(error({"show"}), "unknown argument \"show\"");
    EXPECT_EQ(error({"--show=x"}), "unknown option \"--show=x\"");
}

TEST(CommandLineTest, ReadsThatTheSessionBusStartsIt) {
    EXPECT_FALSE(line({}).isStartedByBus);
    EXPECT_TRUE(line({"--dbus-service"}).isStartedByBus);
}

TEST(CommandLineTest, HelpAndVersionWinOverEverythingElseThatIsAsked) {
    EXPECT_EQ(line({"--help", "--quit"}), CommandLine{.action = CommandLine::Action::showHelp});
    EXPECT_EQ(line({"-h"}).action, CommandLine::Action::showHelp);
    EXPECT_EQ(line({"--version"}).action, CommandLine::Action::showVersion);
    EXPECT_EQ(line({"--version", "--help", "--doctor"}).action, CommandLine::Action::showVersion) << "the first counts";
}

TEST(CommandLineTest, WhatItDoesNotKnowIsRefusedWhereverItStands) {
    for (const auto* known : {"--doctor", "--help", "-h", "--version", "--show", "--quit", "--dbus-service",
                              "--log-level=debug", "--platform=x11"}) {
        EXPECT_EQ(error({known, "--bogus"}), "unknown option \"--bogus\"") << known;
        EXPECT_EQ(error({"--bogus", known}), "unknown option \"--bogus\"") << known;
        EXPECT_EQ(error({known, "nonsense"}), "unknown argument \"nonsense\"") << known;
    }
    EXPECT_EQ(error({"--doctor", "--log-level=loud"}), "--log-level must be debug, default or error, not \"loud\"");
    EXPECT_EQ(error({"--help", "--platform"}), "--platform needs a value");
    EXPECT_EQ(error({"--version", "--show"}, Desktop::macos), "unknown option \"--show\"");
}

TEST(CommandLineTest, SaysWhatIsWrong) {
    EXPECT_EQ(error({"--nonsense"}), "unknown option \"--nonsense\"");
    EXPECT_EQ(error({"--help=x"}), "unknown option \"--help=x\"");
    EXPECT_EQ(error({"file"}), "unknown argument \"file\"");
    EXPECT_EQ(error({""}), "unknown argument \"\"");
    EXPECT_EQ(error({"--platform=mac"}), "--platform must be x11 or simulated, not \"mac\"");
    EXPECT_EQ(error({"--platform="}), "--platform must be x11 or simulated, not \"\"");
    EXPECT_EQ(error({"--log-level=loud"}), "--log-level must be debug, default or error, not \"loud\"");
    EXPECT_EQ(error({"--log-level"}), "--log-level needs a value");
}

TEST(CommandLineTest, TheHelpNamesEveryOption) {
    for (const auto* option : {"--platform=x11|simulated", "--log-level=debug|default|error", "--help", "--version",
                               "--show", "--settings", "--setup", "--quit", "--dbus-service"}) {
        EXPECT_THAT(help(), HasSubstr(option));
    }
}

TEST(CommandLineTest, OnAMacItRunsThereUnlessToldOtherwise) {
    EXPECT_EQ(line({}, Desktop::macos).desktop, Desktop::macos);
    EXPECT_EQ(line({"--platform=macos"}, Desktop::macos).desktop, Desktop::macos);
    EXPECT_EQ(line({"--platform", "simulated"}, Desktop::macos).desktop, Desktop::simulated);
    EXPECT_EQ(line({"--log-level=debug"}, Desktop::macos).logLevel, LogLevel::debug);
    EXPECT_EQ(error({"--platform=x11"}, Desktop::macos), "--platform must be macos or simulated, not \"x11\"");
    EXPECT_EQ(error({"--platform=macos"}), "--platform must be x11 or simulated, not \"macos\"");
}

TEST(CommandLineTest, OnAMacThereIsNeitherWhatLinuxBringsNorWordOfIt) {
    for (const auto* option : {"--show", "--settings", "--setup", "--quit", "--dbus-service", "--doctor"}) {
        EXPECT_EQ(error({option}, Desktop::macos), "unknown option \"" + std::string(option) + "\"");
        EXPECT_THAT(help(Desktop::macos), testing::Not(HasSubstr(option)));
    }
    for (const auto* option :
         {"--platform=macos|simulated", "--log-level=debug|default|error", "--help", "--version"}) {
        EXPECT_THAT(help(Desktop::macos), HasSubstr(option));
    }
    EXPECT_EQ(line({"--help"}, Desktop::macos).action, CommandLine::Action::showHelp);
    EXPECT_EQ(line({"--version"}, Desktop::macos).action, CommandLine::Action::showVersion);
}

TEST(OtherInstanceTest, AnotherProcessOfTheSameProgramCounts) {
    SimulatedDesktop desktop;
    desktop.launch({.pid = SimulatedDesktop::ownPid, .bundleIdentifier = "com.larkmoor.Ferrowyn"}, true);
    desktop.launch({.pid = 100, .bundleIdentifier = "org.editor"}, true);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform()));
    desktop.launch({.pid = 101, .bundleIdentifier = "com.larkmoor.Ferrowyn"}, true);
    EXPECT_TRUE(isRunningElsewhere(desktop.platform()));
    desktop.terminate(101);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform()));
}

TEST(OtherInstanceTest, WhatIsNotInstalledIsNotFound) {
    SimulatedDesktop desktop;
    desktop.launch({.pid = 100}, true);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform())) << "the system does not know this process";
    desktop.launch({.pid = SimulatedDesktop::ownPid, .bundleIdentifier = std::nullopt}, true);
    desktop.launch({.pid = 101, .bundleIdentifier = std::nullopt}, true);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform()));
}

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
