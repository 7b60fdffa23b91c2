#include "ui/row_title.h"

namespace ferrowyn::row_title {

QString text(const AppWindow& window) {
    QString title = display_text::singleLine(window.displayTitle());
    return display_text::hasVisibleCharacters(title) ? title : display_text::singleLine(window.appName);
}

TextEmphasis emphasis(const SwitcherViewModel::Row& row, bool isSelected, const Theme& theme) {
    if (row.highlightedTitleIndices.empty()) {
        return {};
    }
    return {display_text::rangesOfCharacters(row.window->displayTitle(), row.highlightedTitleIndices),
            isSelected ? theme.selectionText : theme.matchedCharacters, isSelected};
}

}  // namespace ferrowyn::row_title
