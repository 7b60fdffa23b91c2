#pragma once

namespace ferrowyn::window_metrics {

/// What the desktop's frame takes of a screen's height, which is known only once a window is there: about that much.
inline constexpr int titleBarHeight = 32;

}  // namespace ferrowyn::window_metrics
