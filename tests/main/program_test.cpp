#include "main/single_instance.h"

#include <signal.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <memory>

namespace ferrowyn {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(SessionCheck, AnX11SessionIsWelcome) {
    EXPECT_EQ(sessionRefusal({.display = ":0", .sessionType = "x11"}), std::nullopt);
    EXPECT_EQ(sessionRefusal({.display = ":0"}), std::nullopt);
    EXPECT_EQ(sessionRefusal({.display = ":99", .sessionType = "tty"}), std::nullopt);
}

TEST(SessionCheck, AWaylandSessionIsToldWhyAndWhatToDo) {
    const auto explanation = AllOf(HasSubstr("Wayland"), HasSubstr("X11"), HasSubstr("keys"), HasSubstr("Xorg"));
    for (const auto& environment : {SessionEnvironment{.display = ":0", .waylandDisplay = "wayland-0"},
                                    SessionEnvironment{.display = ":0", .sessionType = "wayland"},
                                    SessionEnvironment{.waylandDisplay = "wayland-0", .sessionType = "wayland"}}) {
        const auto refusal = sessionRefusal(environment);
        ASSERT_TRUE(refusal);
        EXPECT_THAT(*refusal, explanation);
    }
}

TEST(SessionCheck, AMissingDisplayIsNamed) {
    const auto refusal = sessionRefusal({});
    ASSERT_TRUE(refusal);
    EXPECT_THAT(*refusal, AllOf(HasSubstr("DISPLAY is not set"), HasSubstr("X11 desktop session")));
    EXPECT_THAT(unreachableDisplayMessage({.display = ":77"}), AllOf(HasSubstr(":77"), HasSubstr("XAUTHORITY")));
}

constexpr int patience = 60000;

/// The program, started as a user does it, with private settings.
class ProgramTest : public testing::Test {
protected:
    ProgramTest() {
        environment = QProcessEnvironment::systemEnvironment();
        for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "XDG_SESSION_TYPE", "XDG_RUNTIME_DIR"}) {
            environment.remove(variable);
        }
        // Without an address the D-Bus library would start a bus that outlives the test, and leaks where it cannot.
        environment.insert("DBUS_SESSION_BUS_ADDRESS", "disabled:");
        environment.insert("XDG_CONFIG_HOME", settings.path());
    }

    std::unique_ptr<QProcess> start(const QStringList& arguments, void (*hangup)(int) = SIG_DFL) {
        auto program = std::make_unique<QProcess>();
        program->setProcessEnvironment(environment);
        // Whatever this test was started with.
        program->setChildProcessModifier([hangup] { ::signal(SIGHUP, hangup); });
        program->start(FERROWYN_PROGRAM, arguments);
        EXPECT_TRUE(program->waitForStarted(patience));
        return program;
    }
    struct Result {
        int status;
        std::string output;
        std::string errors;
    };
    static Result resultOf(QProcess& program) {
        const bool hasEnded = program.state() == QProcess::NotRunning || program.waitForFinished(patience);
        if (!hasEnded || program.exitStatus() != QProcess::NormalExit) {
            ADD_FAILURE() << "the program did not end by itself";
            program.kill();
            program.waitForFinished();
            return {-1, "", ""};
        }
        const Result result{program.exitCode(), program.readAllStandardOutput().toStdString(),
                            program.readAllStandardError().toStdString()};
        expectNoSanitizerReport(result.errors);
        return result;
    }
    /// The sanitizers end a program with statuses that occur here for other reasons too.
    static void expectNoSanitizerReport(const std::string& errors) {
        EXPECT_THAT(errors, AllOf(Not(HasSubstr("Sanitizer")), Not(HasSubstr("runtime error: "))));
    }
    Result run(const QStringList& arguments) { return resultOf(*start(arguments)); }

    /// Whether the program says this on standard error while it runs.
    static bool waitForLog(QProcess& program, const QByteArray& text) {
        program.setReadChannel(QProcess::StandardError);
        QByteArray seen;
        while (!seen.contains(text)) {
            if (program.bytesAvailable() == 0 && !program.waitForReadyRead(patience)) {
                ADD_FAILURE() << "only said: " << seen.toStdString();
                return false;
            }
            seen += program.readAllStandardError();
        }
        return true;
    }
    static void signal(const QProcess& program, int number) {
        // A program that has ended has the number 0, which stands for all processes of the group that the test is in.
        ASSERT_EQ(program.state(), QProcess::Running);
        ASSERT_EQ(::kill(static_cast<pid_t>(program.processId()), number), 0);
    }

    /// As the kernel tells it of a running program.
    static bool ignores(const QProcess& program, int number) {
        QFile file(QStringLiteral("/proc/%1/status").arg(program.processId()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray key = "SigIgn:";
        const auto lines = file.readAll().split('\n');
        const auto line =
            std::find_if(lines.begin(), lines.end(), [&](const auto& each) { return each.startsWith(key); });
        if (line == lines.end()) {
            ADD_FAILURE() << "the kernel does not tell";
            return false;
        }
        return (line->mid(key.size()).trimmed().toULongLong(nullptr, 16) >> (number - 1) & 1U) != 0;
    }

    // Kept for as long as the application is, which wants at least a name.
    int argumentCount = 1;
    char nameOfTest[13] = "program_test";
    char* ownArguments[2] = {nameOfTest, nullptr};
    /// Before the first process, whose end it tells of.
    QCoreApplication application{argumentCount, ownArguments};
    QTemporaryDir settings;
    QProcessEnvironment environment;
};

TEST_F(ProgramTest, ShowsItsHelpAndItsVersion) {
    const auto help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_THAT(help.output, HasSubstr("--platform=x11|simulated"));
    EXPECT_THAT(help.errors, IsEmpty());
    const auto version = run({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output, "ferrowyn " FERROWYN_VERSION "\n");
}

TEST_F(ProgramTest, ABadCommandLineEndsWithStatus2) {
    const auto unknown = run({"--nonsense"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_THAT(unknown.errors, HasSubstr("unknown option \"--nonsense\""));
    EXPECT_THAT(unknown.output, IsEmpty());
    EXPECT_EQ(run({"--platform=mac"}).status, 2);
    EXPECT_EQ(run({"--log-level"}).status, 2);
    for (const char* known : {"--doctor", "--help", "--version"}) {
        const auto result = run({known, "--bogus"});
        EXPECT_EQ(result.status, 2) << known;
        EXPECT_THAT(result.errors, HasSubstr("unknown option \"--bogus\"")) << known;
        EXPECT_THAT(result.output, IsEmpty()) << known;
    }
}

TEST_F(ProgramTest, WithoutADisplayItSaysWhatIsMissingAndEndsWithStatus1) {
    const auto result = run({});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("DISPLAY is not set"));
}

TEST_F(ProgramTest, WithoutAServerItNamesTheDisplayAndEndsWithStatus1) {
    environment.insert("DISPLAY", ":31999");
    const auto result = run({});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr(":31999"));
}

TEST_F(ProgramTest, OnAWaylandSessionItSaysWhyAndEndsWithStatus1) {
    environment.insert("WAYLAND_DISPLAY", "wayland-0");
    environment.insert("DISPLAY", ":0");
    for (const auto& arguments : {QStringList{}, QStringList{"--platform=x11"}}) {
        const auto result = run(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.errors, AllOf(HasSubstr("Wayland"), HasSubstr("Xorg")));
    }
}

TEST_F(ProgramTest, NothingCanBeAskedWhereNothingCanRun) {
    for (const char* request : {"--show", "--settings", "--setup", "--quit"}) {
        const auto result = run({request});
        EXPECT_EQ(result.status, 1) << request;
        EXPECT_THAT(result.errors, HasSubstr("DISPLAY is not set")) << request;
    }
    const auto simulated = run({"--platform=simulated", "--quit"});
    EXPECT_EQ(simulated.status, 1);
    EXPECT_THAT(simulated.errors, HasSubstr("Ferrowyn is not running"));
}

TEST_F(ProgramTest, RunsOnTheSimulatedDesktopWithoutADisplayUntilItIsAskedToEnd) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const auto program = start({"--platform=simulated", "--log-level=default"});
        ASSERT_TRUE(waitForLog(*program, "Services active"));
        signal(*program, number);
        EXPECT_EQ(resultOf(*program).status, 0);
    }
}

TEST_F(ProgramTest, StartedWithNohupItOutlivesItsTerminal) {
    const auto program = start({"--platform=simulated", "--log-level=default"}, SIG_IGN);
    ASSERT_TRUE(waitForLog(*program, "Services active"));
    EXPECT_TRUE(ignores(*program, SIGHUP));
    EXPECT_FALSE(ignores(*program, SIGTERM));
    signal(*program, SIGHUP);
    signal(*program, SIGTERM);
    EXPECT_EQ(resultOf(*program).status, 0);
}

/// A private X server.
class ProgramOnX11Test : public ProgramTest {
protected:
    void SetUp() override {
        server.start("Xvfb", {"-displayfd", "1", "-screen", "0", "640x480x24", "-nolisten", "tcp"});
        ASSERT_TRUE(server.waitForReadyRead(patience));
        environment.insert("DISPLAY", ":" + QString::fromLatin1(server.readLine().trimmed()));
    }
    void TearDown() override {
        server.terminate();
        server.waitForFinished(patience);
    }

    /// Waits for the ends of all the others.
    static bool waitUntilOneRuns(const std::vector<std::unique_ptr<QProcess>>& programs) {
        QTimer deadline;
        deadline.setSingleShot(true);
        deadline.start(patience);
        const auto isRunning = [](const auto& program) { return program->state() == QProcess::Running; };
        while (std::count_if(programs.begin(), programs.end(), isRunning) > 1 && deadline.isActive()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return std::count_if(programs.begin(), programs.end(), isRunning) == 1;
    }

    QProcess server;
};

TEST_F(ProgramOnX11Test, OnlyOneRunsOnADisplayAndItLearnsOfTheSecondStart) {
    const auto first = start({"--log-level=debug"});
    ASSERT_TRUE(waitForLog(*first, "Ferrowyn is running"));
    const auto second = run({});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.output, "Ferrowyn is already running on this display.\n");
    EXPECT_TRUE(waitForLog(*first, "Asked from outside: setup"));
    signal(*first, SIGTERM);
    EXPECT_EQ(resultOf(*first).status, 0);
}

TEST_F(ProgramOnX11Test, WritingToAServerThatHasGoneDoesNotEndItOutOfOrder) {
    const auto program = start({"--log-level=debug"});
    ASSERT_TRUE(waitForLog(*program, "Ferrowyn is running"));
    EXPECT_TRUE(ignores(*program, SIGPIPE));
    server.kill();
    EXPECT_EQ(resultOf(*program).status, 1);
}

TEST_F(ProgramOnX11Test, AProgramThatWasKilledLeavesNoClaimBehind) {
    const auto first = start({"--log-level=debug"});
    ASSERT_TRUE(waitForLog(*first, "Ferrowyn is running"));
    first->kill();
    first->waitForFinished(patience);
    const auto second = start({"--log-level=debug"});
    EXPECT_TRUE(waitForLog(*second, "Ferrowyn is running"));
    signal(*second, SIGTERM);
    EXPECT_EQ(resultOf(*second).status, 0);
}

TEST_F(ProgramOnX11Test, OfManyThatStartAtTheSameTimeOneRuns) {
    std::vector<std::unique_ptr<QProcess>> programs;
    for (int number = 0; number < 6; ++number) {
        programs.push_back(start({"--log-level=debug"}));
    }
    // All but one end by themselves.
    ASSERT_TRUE(waitUntilOneRuns(programs));
    QProcess* running = nullptr;
    for (const auto& program : programs) {
        if (program->state() == QProcess::Running) {
            running = program.get();
        } else {
            const auto refused = resultOf(*program);
            EXPECT_EQ(refused.status, 0);
            EXPECT_EQ(refused.output, "Ferrowyn is already running on this display.\n");
        }
    }
    ASSERT_NE(running, nullptr);
    EXPECT_TRUE(waitForLog(*running, "Ferrowyn is running"));
    signal(*running, SIGTERM);
    EXPECT_EQ(resultOf(*running).status, 0);
}

}  // namespace
}  // namespace ferrowyn
