#pragma once

namespace ferrowyn {

/// What the product calls itself towards the desktop: its desktop-file id and its name on the session bus.
inline constexpr const char* productId = "com.larkmoor.Ferrowyn";

}  // namespace ferrowyn
