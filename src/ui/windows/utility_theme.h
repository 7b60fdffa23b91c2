#pragma once

#include <QColor>
#include <QFontMetrics>
#include <QPalette>
#include <QRectF>
#include <QWidget>

class QPainter;

namespace ferrowyn {

/// The role of a symbol or text, which decides its colour.
enum class Tone { primary, secondary, success, warning };

/// The colours of the utility windows, light or dark. A plain value.
struct UtilityTheme {
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
    /// The accent colour for text on the ground.
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
    [[nodiscard]] static UtilityTheme fromPalette(const QPalette& palette);
    /// From the application's current palette. Main thread.
    [[nodiscard]] static UtilityTheme current();

    friend bool operator==(const UtilityTheme&, const UtilityTheme&) = default;
};

/// What the controls of the utility windows have in common. Main thread.
namespace control_painting {

/// The height of a control with one line of text. Only uncommonly tall fonts change it.
[[nodiscard]] int controlHeight(const QFontMetrics& metrics);
/// Whether the widget has the focus and the user works with the keyboard.
[[nodiscard]] bool showsFocus(const QWidget& widget);
/// Paints a ring around a shape whose corners have this radius.
void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius, const QColor& color);
/// Paints a box with round corners and an edge of one device pixel.
void paintBox(QPainter& painter, const QRectF& box, double cornerRadius, const QColor& fill, const QColor& edge);
/// Paints one line of text, elided to fit, at the side of the rectangle where the widget's lines begin.
void paintText(QPainter& painter, const QWidget& widget, const QRectF& rect, const QString& text, const QFont& font,
               const QColor& color);
/// The place of a shape in the widget, whose lines may run from right to left; `shape` is the place where they run from
/// left to right.
[[nodiscard]] QRectF mirrored(const QWidget& widget, const QRectF& shape);

}  // namespace control_painting

}  // namespace ferrowyn
