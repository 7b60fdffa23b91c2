#pragma once

#include <optional>

#include "platform/x11/x11_application_directory.h"

namespace ferrowyn {

class DesktopEntries;

/// The installed application that a window's identity names: by what its toolkit says first, which is meant to be a
/// desktop file's name, then by its class. Any thread.
[[nodiscard]] std::optional<X11InstalledApplication> findInstalledApplication(const DesktopEntries& entries,
                                                                              const X11ApplicationIdentity& identity);

}  // namespace ferrowyn
