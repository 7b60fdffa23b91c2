#pragma once

namespace ferrowyn {

class SimulatedDesktop;

/// Opens some applications with windows on a simulated desktop that trusts the program.
void openDemoWindows(SimulatedDesktop& desktop);

}  // namespace ferrowyn
