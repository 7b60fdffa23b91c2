#pragma once

namespace ferrowyn {

class SwitcherView;

/// Lets assistive technology see the panel as a list of rows, group headers and, where they stand, the empty state or
/// the permission button. Harmless to call again. Main thread.
void installSwitcherAccessibility();
/// Tells it what has changed: the list itself, or which row is selected. Main thread.
void announceSwitcherChanges(SwitcherView& view, bool rowsChanged, bool selectionChanged);

}  // namespace ferrowyn
