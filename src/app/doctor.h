#pragma once

#include <string>

#include "app/doctor_report.h"

namespace ferrowyn {

/// Looks at everything that switching needs in the session that the environment names, in the order in which one thing
/// builds on another. Opens two small windows for a moment and leaves everything as it was; waits for the X server, its
/// window manager and the session bus. With a QCoreApplication.
[[nodiscard]] DoctorReport examineSession(const std::string& ownVersion);

}  // namespace ferrowyn
