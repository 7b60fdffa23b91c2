#pragma once

#include <QFont>

namespace ferrowyn {

/// The program's uses of text. Families are the desktop's; sizes are points at scale 1.
enum class TextStyle {
    searchText,
    // Of rows and cards alike.
    rowTitle,
    rowAppName,
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
    // Of the windows beside the panel.
    paneTitle,
    sectionTitle,
    body,
    bodyEmphasised,
    note,
    productName,
};

/// Main thread: reads the application's font and the screen's resolution.
[[nodiscard]] QFont fontFor(TextStyle style);
/// The weight of matched characters in a title.
[[nodiscard]] QFont::Weight emphasisedWeight();

}  // namespace ferrowyn
