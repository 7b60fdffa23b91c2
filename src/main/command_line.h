#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "app/program_request.h"
#include "platform/log.h"

namespace ferrowyn {

/// What the user asks of the program when starting it.
struct CommandLine {
    enum class Action { run, showHelp, showVersion, examineSession };
    enum class Desktop { x11, macos, simulated };

    Action action = Action::run;
    Desktop desktop = Desktop::x11;
    /// Absent when the user did not ask for a level.
    std::optional<LogLevel> logLevel;
    /// What to ask of the program that runs, or to do first when this start becomes the running one.
    std::optional<ProgramRequest> request;
    /// The session bus starts the program and says next what for.
    bool isStartedByBus = false;

    friend bool operator==(const CommandLine&, const CommandLine&) = default;
};

/// Says what is wrong with the arguments, for the user.
struct CommandLineError {
    std::string message;
};

/// `arguments` without the program's name; `native` is the desktop that this program was built for, which is what it
/// works on unless it is told otherwise. A value stands after "=" or as the next argument; the last of several values
/// or requests counts. Of help, version and doctor the first counts, and nothing else beside it, but what is unknown is
/// refused all the same. On macOS, where the system itself finds the program that runs, there are neither requests nor
/// a doctor.
[[nodiscard]] std::variant<CommandLine, CommandLineError> parseCommandLine(std::span<const char* const> arguments,
                                                                           CommandLine::Desktop native);

[[nodiscard]] std::string_view helpText(CommandLine::Desktop native);

}  // namespace ferrowyn
