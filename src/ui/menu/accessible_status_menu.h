#pragma once

namespace ferrowyn {

class StatusMenuPopup;

/// Makes the popup a menu with its items for assistive technology. May be called repeatedly. Main thread.
void installStatusMenuAccessibility();
/// Announces that the menu opened or closed, or which row is selected. Main thread.
void announceMenu(StatusMenuPopup& popup, bool isOpen);
void announceSelectedRow(StatusMenuPopup& popup, int index);

}  // namespace ferrowyn
