#pragma once

namespace ferrowyn {

struct CommandLine;

/// Exit statuses, as the shell sees them.
namespace exit_status {
inline constexpr int success = 0;
/// The program cannot work on this desktop, or no program runs that could carry out the request.
inline constexpr int unusableDesktop = 1;
inline constexpr int badCommandLine = 2;
}  // namespace exit_status

/// For the user.
inline constexpr const char* notRunningMessage = "ferrowyn: Ferrowyn is not running on this display.";

/// Each runs the program on its desktop until it quits, and returns the exit status. `argumentCount` and `arguments`
/// are for the toolkit, which keeps references to them. A build has the function of its system and that of the
/// simulated desktop.
[[nodiscard]] int runOnMacOS(const CommandLine& line, int& argumentCount, char** arguments);
[[nodiscard]] int runOnX11(const CommandLine& line, int& argumentCount, char** arguments);
[[nodiscard]] int runOnSimulatedDesktop(const CommandLine& line, int& argumentCount, char** arguments);

}  // namespace ferrowyn
