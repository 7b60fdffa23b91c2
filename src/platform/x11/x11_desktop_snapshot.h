#pragma once

#include <vector>

#include "platform/x11/x11_root_facts.h"
#include "platform/x11/x11_window_facts.h"

namespace ferrowyn {

/// The whole desktop at one moment. Immutable once read.
struct X11DesktopSnapshot {
    /// The server answered.
    bool isValid = false;
    X11RootFacts root;
    /// Front-most first, desktop elements included.
    std::vector<X11WindowFacts> windows;
    /// How often the reading waited for the server.
    int roundTrips = 0;
};

}  // namespace ferrowyn
