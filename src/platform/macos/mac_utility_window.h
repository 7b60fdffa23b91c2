#pragma once

#include <cstdint>

namespace ferrowyn {

/// Gives the window of a top-level widget, named by the address of its view, the looks of the program's ordinary
/// windows: its content reaches under a transparent title bar. It is not released when it is closed. Main thread.
/// The height of that bar, where nothing of the content can be seen well, or clicked.
[[nodiscard]] int configureUtilityWindow(std::uintptr_t view, bool isResizable);

}  // namespace ferrowyn
