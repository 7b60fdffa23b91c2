#pragma once

#include "app/program_request.h"

namespace ferrowyn {

struct CommandLine;
struct Platform;
class AppDelegate;

/// Passes the requests of later starts, of the command line and of the desktop to the delegate, and logs them. Main
/// thread. The platform and the launched delegate outlive it.
class OutsideRequests {
public:
    /// Carries out the request of the command line at once.
    OutsideRequests(const Platform& platform, AppDelegate& delegate, const CommandLine& line);
    OutsideRequests(const OutsideRequests&) = delete;
    OutsideRequests& operator=(const OutsideRequests&) = delete;

    void perform(ProgramRequest request);
    /// The user opened the program from a launcher.
    void activate();

private:
    const Platform& platform_;
    AppDelegate& delegate_;
    /// Whether the bus has started the program and its request to open it is still to come.
    bool awaitsOpening_;
};

}  // namespace ferrowyn
