#pragma once

namespace ferrowyn {

struct CommandLine;

/// Exit statuses, as the shell sees them.
namespace exit_status {
inline constexpr int success = 0;
/// The desktop cannot be worked with, or no program runs that could do what is asked.
inline constexpr int unusableDesktop = 1;
inline constexpr int badCommandLine = 2;
}  // namespace exit_status

/// For the user.
inline constexpr const char* notRunningMessage = "ferrowyn: Ferrowyn is not running on this display.";

/// Each runs the program on its desktop until it is asked to quit, and answers the exit status. `argumentCount` and
/// `arguments` are for the toolkit, which keeps references to them. A build has its own system's and the simulated one.
[[nodiscard]] int runOnMacOS(const CommandLine& line, int& argumentCount, char** arguments);
[[nodiscard]] int runOnX11(const CommandLine& line, int& argumentCount, char** arguments);
[[nodiscard]] int runOnSimulatedDesktop(const CommandLine& line, int& argumentCount, char** arguments);

}  // namespace ferrowyn
