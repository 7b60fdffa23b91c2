#pragma once

namespace ferrowyn {

class StatusMenuPopup;

/// Lets assistive technology see the popup as a menu with its items. Harmless to call again. Main thread.
void installStatusMenuAccessibility();
/// Tells it that the menu opened or closed, and on which row the selection stands. Main thread.
void announceMenu(StatusMenuPopup& popup, bool isOpen);
void announceSelectedRow(StatusMenuPopup& popup, int index);

}  // namespace ferrowyn
