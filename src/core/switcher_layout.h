#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace ferrowyn {

/// How the rows of the switcher are arranged.
enum class SwitcherLayout { list, grouped, grid };

/// In the order in which they cycle and in which the user picks one.
inline constexpr std::array allSwitcherLayouts{SwitcherLayout::list, SwitcherLayout::grouped, SwitcherLayout::grid};

/// The stored form; compared exactly when it is read back.
[[nodiscard]] std::string_view rawValue(SwitcherLayout layout);
[[nodiscard]] std::optional<SwitcherLayout> switcherLayoutFromRawValue(std::string_view raw);
[[nodiscard]] std::string_view title(SwitcherLayout layout);
/// Items on one line: 5 in the grid, 1 otherwise.
[[nodiscard]] int columns(SwitcherLayout layout);
/// Lines needed for this many items; 0 for none.
[[nodiscard]] int lineCount(SwitcherLayout layout, int items);
/// Lines shown at the most for a limit of `maximumRows`; at least 1.
[[nodiscard]] int visibleLineCount(SwitcherLayout layout, int maximumRows);
/// list → grouped → grid → list.
[[nodiscard]] SwitcherLayout nextLayout(SwitcherLayout layout);

}  // namespace ferrowyn
