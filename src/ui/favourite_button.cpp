#include "ui/favourite_button.h"

#include "core/window_presentation.h"

namespace ferrowyn {

Rect FavouriteButton::hitArea(const Rect& rect) {
    constexpr double reach = 5;
    return {rect.x - reach, rect.y - reach, rect.width + 2 * reach, rect.height + 2 * reach};
}

void FavouriteButton::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const QColor outline = isSelected ? context.theme.selectionText : context.theme.textSecondary;
    const QColor star = isSelected ? context.theme.selectionFavourite : context.theme.favourite;
    context.symbols.paint(painter, WindowPresentation::favouriteSymbol(isFavourite), rect.midX(), rect.midY(), size,
                          isFavourite ? star : outline);
}

}  // namespace ferrowyn
