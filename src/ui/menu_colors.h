#pragma once

#include <QColor>

#include "platform/status_item.h"
#include "ui/theme.h"

namespace ferrowyn {

/// The colours of the program's own menu, light or dark as the panel's. A plain value.
struct MenuColors {
    QColor background;
    QColor edge;
    QColor separator;
    QColor label;
    QColor secondaryLabel;
    QColor tertiaryLabel;
    QColor disabledLabel;
    QColor orange;
    QColor accent;
    /// Under the gear while the pointer is on it: the label colour at 10 %.
    QColor gearHover;
    QColor selection;
    QColor selectionText;
    QColor selectionTextSecondary;

    [[nodiscard]] QColor tint(MenuTint tint) const;
    [[nodiscard]] static MenuColors fromTheme(const Theme& theme);
};

}  // namespace ferrowyn
