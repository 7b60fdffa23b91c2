#pragma once

namespace ferrowyn {

class SimulatedDesktop;

/// Puts a handful of applications with windows on a simulated desktop that trusts the program.
void openDemoWindows(SimulatedDesktop& desktop);

}  // namespace ferrowyn
