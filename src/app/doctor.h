#pragma once

#include <string>

#include "app/doctor_report.h"

namespace ferrowyn {

/// Looks at everything that switching needs in the session that the environment names, in the order in which one thing
/// builds on another. Changes nothing; waits for the X server and for the session bus. With a QCoreApplication.
[[nodiscard]] DoctorReport examineSession(const std::string& ownVersion);

}  // namespace ferrowyn
