#pragma once

class QDir;

namespace ferrowyn::gallery {

/// Writes pictures of the menu in each state of health, light and dark, at scale 1 and 2; false when one could not be
/// written.
[[nodiscard]] bool saveMenuShots(const QDir& folder);

}  // namespace ferrowyn::gallery
