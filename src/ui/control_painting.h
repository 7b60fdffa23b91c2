#pragma once

#include <QRectF>
#include <QWidget>

#include "ui/window_theme.h"

class QPainter;

/// What the controls of the windows have in common. Main thread.
namespace ferrowyn::control_painting {

/// The keyboard is here, and the user works with it rather than with the mouse.
[[nodiscard]] bool showsFocus(const QWidget& widget);
/// Around a shape whose corners have this radius, outside of it.
void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius, const WindowTheme& theme);
/// A shape with an edge of one device pixel.
void paintBox(QPainter& painter, const QRectF& box, double cornerRadius, const QColor& fill, const QColor& edge);
/// One line, cut at its end where it does not fit, its first letter at the rectangle's leading edge.
void paintText(QPainter& painter, const QRectF& rect, const QString& text, const QFont& font, const QColor& color,
               Qt::Alignment alignment = Qt::AlignLeft);

}  // namespace ferrowyn::control_painting
