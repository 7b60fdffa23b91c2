#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>

#include "core/switcher_view_model.h"
#include "platform/icon_source.h"
#include "ui/common/paint_context.h"
#include "ui/common/text_line.h"
#include "ui/common/theme.h"

class QPainter;

namespace ferrowyn {

/// What rows and cards show as a window's title. Pure functions.
namespace row_title {

/// The display title on one line, or the application's name when the title shows nothing.
[[nodiscard]] QString text(const AppWindow& window);
/// How the matched characters stand out: in colour or, on the selection, underlined.
[[nodiscard]] TextEmphasis emphasis(const SwitcherViewModel::Row& row, bool isSelected, const Theme& theme);

}  // namespace row_title

/// The header above the first row of an application in the grouped layout. A plain value.
struct GroupHeaderView {
    QString appName;
    std::shared_ptr<const IconImage> icon;
    int count = 0;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// A row: a window in the list and grouped layouts. A plain value; the row outlives it.
struct WindowRowView {
    const SwitcherViewModel::Row& row;
    std::shared_ptr<const IconImage> icon;
    bool isSelected = false;
    /// Counted from 1; only the first nine can be chosen with a digit and show it.
    int ordinal = 0;
    bool showsAppName = true;
    bool isIndented = false;
    std::function<void()> onToggleFavourite;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    /// The rectangle of the star; absent when the row has none.
    [[nodiscard]] std::optional<Rect> favouriteButton(const Rect& rect) const;

private:
    [[nodiscard]] bool showsOrdinal() const;
    /// Paints badge, star and ordinal. Returns the right edge of the room that they leave for the text.
    [[nodiscard]] double paintTrailingParts(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    void paintText(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// A card: a window in the grid layout. A plain value; the row outlives it.
struct WindowCardView {
    const SwitcherViewModel::Row& row;
    std::shared_ptr<const IconImage> icon;
    bool isSelected = false;
    /// Counted from 1; only the first nine can be chosen with a digit and show it.
    int ordinal = 0;
    std::function<void()> onToggleFavourite;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    /// The rectangle of the star; absent when the card has none.
    [[nodiscard]] std::optional<Rect> favouriteButton(const Rect& rect) const;

private:
    void paintCorners(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    void paintText(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
