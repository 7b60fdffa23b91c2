#pragma once

#include "app/program_request.h"

namespace ferrowyn {

struct CommandLine;
struct Platform;
class AppDelegate;

/// Passes on what later starts of the program, its command line and the desktop ask, and says so in the log. Main
/// thread. The platform and the launched delegate outlive it.
class OutsideRequests {
public:
    /// Carries out at once what the command line asks.
    OutsideRequests(const Platform& platform, AppDelegate& delegate, const CommandLine& line);
    OutsideRequests(const OutsideRequests&) = delete;
    OutsideRequests& operator=(const OutsideRequests&) = delete;

    void perform(ProgramRequest request);
    /// The user opened the program from a launcher.
    void activate();

private:
    const Platform& platform_;
    AppDelegate& delegate_;
    /// The bus has started the program to be opened, and has not said so yet.
    bool awaitsOpening_;
};

}  // namespace ferrowyn
