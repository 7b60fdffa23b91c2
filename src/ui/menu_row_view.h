#pragma once

#include <QString>

#include "platform/status_item.h"
#include "ui/menu_colors.h"
#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// One row of the menu below the header: an item, a section's title or a separator. A plain value.
struct MenuRowView {
    const MenuRow& row;
    bool isSelected = false;

    void paint(QPainter& painter, const Rect& rect, const MenuColors& colors, const PaintContext& context) const;
    /// How wide the menu has to be for the row to be whole.
    [[nodiscard]] double neededWidth(const PaintContext& context) const;
    /// The key equivalent as this desktop writes it; empty for none.
    [[nodiscard]] static QString keyEquivalentText(const MenuRow& row, const TextTable& texts);

private:
    void paintItem(QPainter& painter, const Rect& rect, const MenuColors& colors, const PaintContext& context) const;
    [[nodiscard]] QString suffixText() const;
};

}  // namespace ferrowyn
