#pragma once

#include <QColor>
#include <QPalette>

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

}  // namespace ferrowyn
