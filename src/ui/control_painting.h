#pragma once

#include <QFontMetrics>
#include <QRectF>
#include <QWidget>

#include "ui/window_theme.h"

class QPainter;

/// What the controls of the windows have in common. Main thread.
namespace ferrowyn::control_painting {

/// Of buttons and other boxes with one line of text: the same for all of them, but for fonts that are uncommonly tall.
[[nodiscard]] int controlHeight(const QFontMetrics& metrics);
/// The keyboard is here, and the user works with it rather than with the mouse.
[[nodiscard]] bool showsFocus(const QWidget& widget);
/// Around a shape whose corners have this radius, outside of it.
void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius, const WindowTheme& theme);
/// A shape with an edge of one device pixel.
void paintBox(QPainter& painter, const QRectF& box, double cornerRadius, const QColor& fill, const QColor& edge);
/// One line, cut at its end where it does not fit, at the edge of the rectangle where the widget's lines begin.
void paintText(QPainter& painter, const QWidget& widget, const QRectF& rect, const QString& text, const QFont& font,
               const QColor& color);
/// Where a shape, as it is when lines run from left to right, stands in a widget whose lines may run the other way.
[[nodiscard]] QRectF mirrored(const QWidget& widget, const QRectF& shape);

}  // namespace ferrowyn::control_painting
