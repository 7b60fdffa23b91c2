#pragma once

/// Distances inside the grouped boxes of the windows, in points.
namespace ferrowyn::group_metrics {

/// From the box's edge to what stands in it.
inline constexpr int rowInset = 14;
/// The least height of a row, and the least distance of its text from the row's edges.
inline constexpr int rowHeight = 42;
inline constexpr int rowPadding = 11;
/// A note follows its row at once.
inline constexpr int belowNote = 12;

}  // namespace ferrowyn::group_metrics
