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
    /// The request to the running program, or, when none runs, to this one after its start.
    std::optional<ProgramRequest> request;
    /// The session bus starts the program and sends its request afterwards.
    bool isStartedByBus = false;

    friend bool operator==(const CommandLine&, const CommandLine&) = default;
};

/// Says what is wrong with the arguments, for the user.
struct CommandLineError {
    std::string message;
};

/// `arguments` are without the program's name; `native` is the desktop that this program was built for, and the
/// default. A value stands after "=" or is the next argument; the last of several values or requests counts. The first
/// of help, version and doctor counts, and everything else is ignored then, except that an unknown argument is an
/// error. On macOS there are no requests, because the system finds the running program, and no doctor.
[[nodiscard]] std::variant<CommandLine, CommandLineError> parseCommandLine(std::span<const char* const> arguments,
                                                                           CommandLine::Desktop native);

[[nodiscard]] std::string_view helpText(CommandLine::Desktop native);

}  // namespace ferrowyn
