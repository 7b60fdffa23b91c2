#pragma once

#include <QFont>

namespace ferrowyn {

/// The panel's and the menu's uses of text. Families are the desktop's; sizes are points at scale 1.
enum class TextStyle {
    searchText,
    rowTitle,
    rowAppName,
    cardTitle,
    cardAppName,
    cardOrdinal,
    badge,
    groupName,
    groupCount,
    rowCount,
    keyCap,
    hint,
    emptyTitle,
    emptyDetail,
    menuItem,
    menuHeaderTitle,
    menuHeaderSubtitle,
    menuSectionTitle,
    button,
};

/// Main thread: reads the application's font and the screen's resolution.
[[nodiscard]] QFont fontFor(TextStyle style);
/// The weight of matched characters in a title.
[[nodiscard]] QFont::Weight emphasisedWeight();

}  // namespace ferrowyn
