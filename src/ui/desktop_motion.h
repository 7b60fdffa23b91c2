#pragma once

class QWidget;

namespace ferrowyn {

/// Whether the desktop asks for as little motion as possible: its style animates nothing, or the environment variable
/// FERROWYN_REDUCED_MOTION is set to something other than 0. Main thread.
[[nodiscard]] bool prefersReducedMotion(const QWidget& widget);

}  // namespace ferrowyn
