#pragma once

#include <QColor>
#include <QPalette>

#include "core/window_presentation.h"

namespace ferrowyn {

/// The colours of the panel, light or dark. A plain value.
struct Theme {
    bool isDark = false;
    /// Blended with the desktop by a compositor, with round corners; otherwise opaque with square ones.
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
    /// The number in a group header, less important than anything else, and the box it stands in.
    QColor countText;
    QColor countFill;
    QColor favourite;
    /// The tints of the badges.
    QColor orange;
    QColor blue;
    QColor purple;
    QColor buttonFill;
    QColor buttonFillHovered;

    /// On the selection: its text, the less important text, and what badges and key caps stand on.
    QColor selection;
    QColor selectionText;
    QColor selectionTextSecondary;
    QColor selectionChip;
    QColor selectionFavourite;

    [[nodiscard]] QColor badgeText(WindowPresentation::Tint tint) const;
    [[nodiscard]] QColor badgeFill(WindowPresentation::Tint tint) const;

    /// Light or dark as the desktop's windows are, in the desktop's accent colour where it has one, and in its own
    /// orange, blue, purple and yellow where it has those.
    [[nodiscard]] static Theme fromPalette(const QPalette& palette, bool isTranslucent);
    [[nodiscard]] static Theme make(bool isDark, const QColor& accent, bool isTranslucent);

    friend bool operator==(const Theme&, const Theme&) = default;
};

}  // namespace ferrowyn
