#include "app/command_line.h"

namespace ferrowyn {
namespace {

using testing::HasSubstr;

std::variant<CommandLine, CommandLineError> parse(const std::vector<const char*>& arguments) {
    return parseCommandLine(arguments);
}

CommandLine line(const std::vector<const char*>& arguments) {
    return std::get<CommandLine>(parse(arguments));
}

std::string error(const std::vector<const char*>& arguments) {
    return std::get<CommandLineError>(parse(arguments)).message;
}

TEST(CommandLineTest, WithoutArgumentsTheProgramRunsOnX11) {
    EXPECT_EQ(line({}), CommandLine{});
    EXPECT_EQ(line({}).action, CommandLine::Action::run);
    EXPECT_EQ(line({}).desktop, CommandLine::Desktop::x11);
    EXPECT_EQ(line({}).logLevel, std::nullopt);
}

TEST(CommandLineTest, TheDoctorWinsOverWhatFollows) {
    EXPECT_EQ(line({"--doctor"}).action, CommandLine::Action::examineSession);
    EXPECT_EQ(line({"--log-level=debug", "--doctor", "nonsense"}).action, CommandLine::Action::examineSession);
    EXPECT_EQ(error({"--doctor=x"}), "unknown option \"--doctor=x\"");
    EXPECT_THAT(std::string(helpText()), HasSubstr("--doctor"));
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

TEST(CommandLineTest, HelpAndVersionWinOverWhatFollows) {
    EXPECT_EQ(line({"--help", "--nonsense"}).action, CommandLine::Action::showHelp);
    EXPECT_EQ(line({"-h"}).action, CommandLine::Action::showHelp);
    EXPECT_EQ(line({"--version"}).action, CommandLine::Action::showVersion);
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
        EXPECT_THAT(std::string(helpText()), HasSubstr(option));
    }
}

}  // namespace
}  // namespace ferrowyn
