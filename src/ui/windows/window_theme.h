#pragma once

#include <QColor>
#include <QFontMetrics>
#include <QPalette>
#include <QRectF>
#include <QWidget>

class QPainter;

namespace ferrowyn {

/// What a symbol or text is painted in.
enum class Tone { primary, secondary, onAccent, success, warning, accent, favourite };

/// The colours of the settings, setup and about windows, light or dark. A plain value.
struct WindowTheme {
    bool isDark = false;

    QColor ground;
    QColor sidebar;
    /// Between the sidebar and the form, and between the rows of a group.
    QColor hairline;
    QColor groupFill;
    QColor groupEdge;
    QColor textPrimary;
    QColor textSecondary;
    QColor keyCapFill;
    QColor keyCapEdge;

    /// Dark enough for white text on it.
    QColor accent;
    QColor accentHovered;
    QColor accentPressed;
    QColor accentText;
    /// The accent as text on the ground.
    QColor link;
    QColor focusRing;
    /// The sidebar's selection while the keyboard is elsewhere.
    QColor selectionInactive;
    QColor rowHovered;

    QColor controlFill;
    QColor controlFillHovered;
    QColor controlFillPressed;
    QColor controlEdge;
    QColor switchOff;
    QColor switchOffEdge;
    QColor switchKnob;

    QColor success;
    QColor warning;
    QColor favourite;

    [[nodiscard]] QColor color(Tone tone) const;

    /// Light or dark as the desktop's windows are, in the desktop's accent colour where it has one.
    [[nodiscard]] static WindowTheme fromPalette(const QPalette& palette);
    /// As the application's palette is now. Main thread.
    [[nodiscard]] static WindowTheme current();

    friend bool operator==(const WindowTheme&, const WindowTheme&) = default;
};

/// What the controls of the windows have in common. Main thread.
namespace control_painting {

/// Of buttons and other boxes with one line of text: the same for all of them, but for fonts that are uncommonly tall.
[[nodiscard]] int controlHeight(const QFontMetrics& metrics);
/// The keyboard is here, and the user works with it rather than with the mouse.
[[nodiscard]] bool showsFocus(const QWidget& widget);
/// Around a shape whose corners have this radius, outside of it.
void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius, const QColor& color);
/// A shape with an edge of one device pixel.
void paintBox(QPainter& painter, const QRectF& box, double cornerRadius, const QColor& fill, const QColor& edge);
/// One line, cut at its end where it does not fit, at the edge of the rectangle where the widget's lines begin.
void paintText(QPainter& painter, const QWidget& widget, const QRectF& rect, const QString& text, const QFont& font,
               const QColor& color);
/// Where a shape, as it is when lines run from left to right, stands in a widget whose lines may run the other way.
[[nodiscard]] QRectF mirrored(const QWidget& widget, const QRectF& shape);

}  // namespace control_painting

}  // namespace ferrowyn
