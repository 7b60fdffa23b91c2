#pragma once

#include "main/doctor.h"

namespace ferrowyn {

class X11Connection;

/// Whether the window manager activates windows on request: opens two windows as small as can be, asks for one and then
/// for the other, and in the end for the window that was active before. Waits for the manager, up to some seconds for
/// one that does not. `connection` is used for nothing else meanwhile.
[[nodiscard]] DoctorFinding activationFinding(const X11Connection& connection);

}  // namespace ferrowyn
