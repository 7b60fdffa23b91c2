#pragma once

#include <QString>
#include <functional>
#include <memory>

#include "core/window_presentation.h"
#include "platform/icon_source.h"
#include "ui/common/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The background of the selected row or card. A plain value.
struct SelectionBackground {
    static constexpr double cornerRadius = 9;

    bool isSelected = false;

    /// Paints nothing unless `isSelected`.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// An application's icon, centred in its rectangle. A plain value.
struct AppIconView {
    std::shared_ptr<const IconImage> icon;
    /// The side, in points.
    double size = 32;
    /// For a minimised window.
    bool isDimmed = false;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// The star that pins an application to the top. Drawn only where `WindowPresentation::showsFavouriteButton` says. A
/// plain value.
struct FavouriteButton {
    bool isFavourite = false;
    bool isSelected = false;
    /// The symbol's size in points.
    double size = 12.5;
    std::function<void()> action;

    /// The area in which a click counts. It is larger than the symbol, which is a small target.
    [[nodiscard]] static Rect hitArea(const Rect& rect);
    /// Centred in the rectangle.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// A badge that names a window's state. A plain value.
struct BadgeView {
    WindowPresentation::Badge badge;
    /// Smaller and opaque, to be painted over an icon.
    bool compact = false;
    bool isOnSelection = false;

    [[nodiscard]] double width(const PaintContext& context) const;
    [[nodiscard]] double height() const { return compact ? 16 : 19; }
    /// Paints it at the rectangle's left edge, centred in its height, as wide as `width()`.
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
    /// Paints it at the rectangle's left edge, centred in its height, as wide as `width()`.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn
