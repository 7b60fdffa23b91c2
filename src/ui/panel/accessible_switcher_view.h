#pragma once

#include <functional>

class QAccessibleEvent;

namespace ferrowyn {

class SwitcherView;

/// Makes the panel a list for assistive technology: of rows and group headers, or of the message in their place. May be
/// called repeatedly. Main thread.
void installSwitcherAccessibility();
/// Receives the announcements.
using AccessibilityAnnouncer = std::function<void(QAccessibleEvent&)>;

/// Announces that the list or the selected row has changed. Main thread.
void announceSwitcherChanges(SwitcherView& view, bool rowsChanged, bool selectionChanged,
                             const AccessibilityAnnouncer& announce);

}  // namespace ferrowyn
