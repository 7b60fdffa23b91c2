#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "core/window_presentation.h"
#include "platform/icon_source.h"
#include "ui/common/paint_context.h"

class QPainter;

namespace ferrowyn {

/// What the selected row stands on. A plain value.
struct SelectionBackground {
    static constexpr double cornerRadius = 9;

    bool isSelected = false;

    /// Nothing unless selected.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// An application's icon, centred in its rectangle. A plain value.
struct AppIconView {
    std::shared_ptr<const IconImage> icon;
    /// The side, in points.
    double size = 32;
    /// For a window that is put away.
    bool isDimmed = false;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// The star that pins an application to the top. Drawn only where `WindowPresentation::showsFavouriteButton` says. A
/// plain value.
struct FavouriteButton {
    bool isFavourite = false;
    bool isSelected = false;
    /// Of the symbol, in points.
    double size = 12.5;
    std::function<void()> action;

    /// Where a click counts: larger than the symbol, which is small for a pointer.
    [[nodiscard]] static Rect hitArea(const Rect& rect);
    /// Centred in the rectangle.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// A window's state, on a tint of its colour. A plain value.
struct BadgeView {
    WindowPresentation::Badge badge;
    /// Smaller, and opaque, for a place over an icon.
    bool compact = false;
    bool isOnSelection = false;

    [[nodiscard]] double width(const PaintContext& context) const;
    [[nodiscard]] double height() const { return compact ? 16 : 19; }
    /// Centred in the rectangle's height, from its left edge, as wide as `width`.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;

private:
    [[nodiscard]] const TextLine& line(const PaintContext& context) const;
};

/// One key, drawn as a key cap. A plain value.
struct KeyCapView {
    static constexpr double height = 20;

    QString text;
    bool isOnSelection = false;

    [[nodiscard]] double width(const PaintContext& context) const;
    /// Centred in the rectangle's height, from its left edge, as wide as `width`.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
