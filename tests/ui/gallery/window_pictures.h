#pragma once

#include <QDir>

namespace ferrowyn::gallery {

/// Writes pictures of the menu in each state of health, light and dark, at scale 1 and 2; false when one could not be
/// written.
[[nodiscard]] bool saveMenuShots(const QDir& folder);

}  // namespace ferrowyn::gallery

namespace ferrowyn::test {

/// Draws every window and pane in many states into the folder; false when a picture could not be written.
[[nodiscard]] bool drawWindows(const QDir& folder);

}  // namespace ferrowyn::test
