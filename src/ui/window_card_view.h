#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "core/switcher_view_model.h"
#include "platform/icon_source.h"
#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// A window in the grid layout. A plain value; the row outlives it.
struct WindowCardView {
    const SwitcherViewModel::Row& row;
    std::shared_ptr<const IconImage> icon;
    bool isSelected = false;
    /// Counted from 1; only the first nine can be chosen with a digit and show it.
    int ordinal = 0;
    std::function<void()> onToggleFavourite;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    /// Where the star stands; nothing when the card has none.
    [[nodiscard]] std::optional<Rect> favouriteButton(const Rect& rect) const;

private:
    void paintCorners(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    void paintText(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
