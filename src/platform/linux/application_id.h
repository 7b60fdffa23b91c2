#pragma once

#include <string_view>

namespace ferrowyn {

/// The name of the installed program on the desktop: of its desktop file (and with it of its icon and autostart entry)
/// and of its service on the session bus.
inline constexpr std::string_view applicationId = "com.larkmoor.ferrowyn";

}  // namespace ferrowyn
