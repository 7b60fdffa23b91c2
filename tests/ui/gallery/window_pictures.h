#pragma once

#include <QDir>

namespace ferrowyn::test {

/// Draws every window and pane in many states into the folder; false when a picture could not be written.
[[nodiscard]] bool drawWindows(const QDir& folder);

}  // namespace ferrowyn::test
