#pragma once

#include <QColor>
#include <QPalette>

#include "core/window_presentation.h"

namespace ferrowyn {

/// The colours of the panel, light or dark. A plain value.
struct Theme {
    bool isDark = false;
    /// Whether a compositor blends the panel with the desktop. The panel then has round corners, otherwise square ones.
    bool isTranslucent = false;

    QColor background;
    QColor hairline;
    QColor textPrimary;
    QColor textSecondary;
    QColor textTertiary;
    QColor matchedCharacters;
    QColor accent;
    QColor keyCapFill;
    QColor keyCapEdge;
    /// The number in a group header, and the box around it.
    QColor countText;
    QColor countFill;
    QColor favourite;
    /// The tints of the badges.
    QColor orange;
    QColor blue;
    QColor purple;
    QColor buttonFill;
    QColor buttonFillHovered;

    /// The background of the selected row, and what stands on it.
    QColor selection;
    QColor selectionText;
    QColor selectionTextSecondary;
    QColor selectionChip;
    QColor selectionFavourite;

    [[nodiscard]] QColor badgeText(WindowPresentation::Tint tint) const;
    [[nodiscard]] QColor badgeFill(WindowPresentation::Tint tint) const;

    /// Light or dark like the desktop's windows, with the desktop's accent colour if it has one, and with its orange,
    /// blue, purple and yellow where it provides them.
    [[nodiscard]] static Theme fromPalette(const QPalette& palette, bool isTranslucent);
    [[nodiscard]] static Theme make(bool isDark, const QColor& accent, bool isTranslucent);

    friend bool operator==(const Theme&, const Theme&) = default;
};

}  // namespace ferrowyn
