#pragma once

#include <functional>

class QAccessibleEvent;

namespace ferrowyn {

class SwitcherView;

/// Lets assistive technology see the panel as a list of rows, group headers and, where they stand, the empty state or
/// the permission button. Harmless to call again. Main thread.
void installSwitcherAccessibility();
/// Where announcements go.
using AccessibilityAnnouncer = std::function<void(QAccessibleEvent&)>;

/// Tells it what has changed: the list itself, or which row is selected. Main thread.
void announceSwitcherChanges(SwitcherView& view, bool rowsChanged, bool selectionChanged,
                             const AccessibilityAnnouncer& announce);

}  // namespace ferrowyn
