#include "main/command_line.h"

#include <fmt/format.h>

#include <array>
#include <cstddef>
#include <utility>

namespace ferrowyn {

namespace {

template <typename Value>
using Choice = std::pair<std::string_view, Value>;

using Desktop = CommandLine::Desktop;

constexpr Choice<Desktop> simulatedDesktop{"simulated", Desktop::simulated};
constexpr std::array desktopsOnMacOS{Choice<Desktop>{"macos", Desktop::macos}, simulatedDesktop};
constexpr std::array desktopsOnX11{Choice<Desktop>{"x11", Desktop::x11}, simulatedDesktop};
constexpr std::array logLevels{
    Choice<LogLevel>{"debug", LogLevel::debug},
    Choice<LogLevel>{"default", LogLevel::standard},
    Choice<LogLevel>{"error", LogLevel::error},
};

template <typename Value, std::size_t count>
std::optional<Value> choose(const std::array<Choice<Value>, count>& choices, std::string_view text) {
    for (const auto& [name, value] : choices) {
        if (name == text) {
            return value;
        }
    }
    return std::nullopt;
}

template <typename Value, std::size_t count>
CommandLineError badValue(const std::array<Choice<Value>, count>& choices, std::string_view option,
                          std::string_view text) {
    std::string names;
    for (std::size_t at = 0; at < count; ++at) {
        names += at == 0 ? "" : at + 1 == count ? " or " : ", ";
        names += choices[at].first;
    }
    return {fmt::format("{} must be {}, not \"{}\"", option, names, text)};
}

/// Applies an option with a value. Returns the error, or nothing on success.
std::optional<CommandLineError> apply(CommandLine& line, Desktop native, std::string_view option,
                                      std::string_view value) {
    if (option == "--platform") {
        const auto& desktops = native == Desktop::macos ? desktopsOnMacOS : desktopsOnX11;
        const auto desktop = choose(desktops, value);
        if (!desktop) {
            return badValue(desktops, option, value);
        }
        line.desktop = *desktop;
    } else {
        line.logLevel = choose(logLevels, value);
        if (!line.logLevel) {
            return badValue(logLevels, option, value);
        }
    }
    return std::nullopt;
}

/// The action that the argument asks for instead of running; nothing for other arguments.
std::optional<CommandLine::Action> actionNamed(std::string_view argument, Desktop native) {
    if (argument == "--help" || argument == "-h") {
        return CommandLine::Action::showHelp;
    }
    if (argument == "--version") {
        return CommandLine::Action::showVersion;
    }
    if (argument == "--doctor" && native != Desktop::macos) {
        return CommandLine::Action::examineSession;
    }
    return std::nullopt;
}

/// Applies an option without a value; false when the argument is none.
bool applyFlag(CommandLine& line, Desktop native, std::string_view argument) {
    if (native == Desktop::macos) {
        return false;
    }
    if (argument == "--dbus-service") {
        line.isStartedByBus = true;
        return true;
    }
    const auto request = argument.starts_with("--") ? programRequestNamed(argument.substr(2)) : std::nullopt;
    if (!request) {
        return false;
    }
    line.request = request;
    return true;
}

std::string_view helpOnX11() {
    return "Usage: ferrowyn [options]\n"
           "\n"
           "Switches between all open windows: hold Alt and press Tab.\n"
           "\n"
           "Of the Ferrowyn that runs, which the first three start if there is none:\n"
           "  --show                           Open the switcher; it stays open without a key held\n"
           "  --settings                       Open the settings\n"
           "  --setup                          Open the setup guide; a second start does the same\n"
           "  --quit                           End it\n"
           "\n"
           "Options:\n"
           "  --platform=x11|simulated         The desktop to work on: the X11 session (the default),\n"
           "                                   or a simulated one without a display, for trying out\n"
           "  --log-level=debug|default|error  What to log, and log to standard error as well as to the\n"
           "                                   journal; without it only a terminal gets the messages\n"
           "  --dbus-service                   For the session bus, which starts the program with it\n"
           "  --doctor                         Say what is right and wrong in this session, for you and for a\n"
           "                                   bug report; the exit status is 0 when switching can work\n"
           "  -h, --help                       Show this text\n"
           "  --version                        Show the version\n";
}

std::string_view helpOnMacOS() {
    return "Usage: Ferrowyn [options]\n"
           "\n"
           "Switches between all open windows: hold Option and press Tab.\n"
           "\n"
           "Options:\n"
           "  --platform=macos|simulated       The desktop to work on: this Mac (the default), or a\n"
           "                                   simulated one without a display, for trying out\n"
           "  --log-level=debug|default|error  What to log to standard error, beside the unified log\n"
           "  -h, --help                       Show this text\n"
           "  --version                        Show the version\n";
}

}  // namespace

std::variant<CommandLine, CommandLineError> parseCommandLine(std::span<const char* const> arguments, Desktop native) {
    CommandLine line{.desktop = native};
    auto action = CommandLine::Action::run;
    while (!arguments.empty()) {
        const std::string_view argument = arguments.front();
        arguments = arguments.subspan(1);
        if (const auto named = actionNamed(argument, native)) {
            action = action == CommandLine::Action::run ? *named : action;
            continue;
        }
        if (applyFlag(line, native, argument)) {
            continue;
        }
        const auto equals = argument.find('=');
        const auto option = argument.substr(0, equals);
        if (option != "--platform" && option != "--log-level") {
            return CommandLineError{
                fmt::format("unknown {} \"{}\"", argument.starts_with('-') ? "option" : "argument", argument)};
        }
        std::string_view value;
        if (equals != std::string_view::npos) {
            value = argument.substr(equals + 1);
        } else if (!arguments.empty()) {
            value = arguments.front();
            arguments = arguments.subspan(1);
        } else {
            return CommandLineError{fmt::format("{} needs a value", option)};
        }
        if (auto error = apply(line, native, option, value)) {
            return *std::move(error);
        }
    }
    return action == CommandLine::Action::run ? line : CommandLine{.action = action};
}

std::string_view helpText(Desktop native) {
    return native == Desktop::macos ? helpOnMacOS() : helpOnX11();
}

}  // namespace ferrowyn
