#include <iostream>
#include <span>
#include <variant>

#include "main/command_line.h"
#include "main/program.h"
#ifndef __APPLE__
#include <QCoreApplication>

#include "main/doctor.h"
#endif

namespace {

using ferrowyn::CommandLine;

#ifdef __APPLE__

constexpr auto native = CommandLine::Desktop::macos;

int runOnNativeDesktop(const CommandLine& line, int& argumentCount, char** arguments) {
    return ferrowyn::runOnMacOS(line, argumentCount, arguments);
}

#else

constexpr auto native = CommandLine::Desktop::x11;

int examine(int& argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    const auto report = ferrowyn::examineSession(FERROWYN_VERSION);
    std::cout << ferrowyn::formatted(report);
    return ferrowyn::switchingCanWork(report) ? ferrowyn::exit_status::success : ferrowyn::exit_status::unusableDesktop;
}

int runOnNativeDesktop(const CommandLine& line, int& argumentCount, char** arguments) {
    return line.action == CommandLine::Action::examineSession ? examine(argumentCount, arguments)
                                                              : ferrowyn::runOnX11(line, argumentCount, arguments);
}

#endif

int run(const CommandLine& line, int& argumentCount, char** arguments) {
    switch (line.action) {
        case CommandLine::Action::showHelp:
            std::cout << ferrowyn::helpText(native);
            return ferrowyn::exit_status::success;
        case CommandLine::Action::showVersion:
            std::cout << "ferrowyn " << FERROWYN_VERSION << "\n";
            return ferrowyn::exit_status::success;
        case CommandLine::Action::examineSession:
        case CommandLine::Action::run:
            break;
    }
    return line.desktop == CommandLine::Desktop::simulated
               ? ferrowyn::runOnSimulatedDesktop(line, argumentCount, arguments)
               : runOnNativeDesktop(line, argumentCount, arguments);
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::span<const char* const> all(arguments, static_cast<std::size_t>(argumentCount));
    const auto parsed = ferrowyn::parseCommandLine(all.subspan(all.empty() ? 0 : 1), native);
    if (const auto* error = std::get_if<ferrowyn::CommandLineError>(&parsed)) {
        std::cerr << "ferrowyn: " << error->message << "\nTry \"ferrowyn --help\".\n";
        return ferrowyn::exit_status::badCommandLine;
    }
    // The toolkit gets only the program's name, because its command-line options are not this program's.
    int toolkitArgumentCount = argumentCount > 0 ? 1 : 0;
    return run(std::get<CommandLine>(parsed), toolkitArgumentCount, arguments);
}
