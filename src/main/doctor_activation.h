#pragma once

#include "main/doctor.h"

namespace ferrowyn {

class X11Connection;

/// Whether the window manager activates windows on request. Opens two tiny windows, requests one, then the other, and
/// finally the window that was active before. Waits for the window manager, up to some seconds when it does not
/// respond. The connection must not be used for anything else meanwhile.
[[nodiscard]] DoctorFinding activationFinding(const X11Connection& connection);

}  // namespace ferrowyn
