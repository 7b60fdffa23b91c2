#pragma once

#include <QString>

#include "core/switcher_view_model.h"
#include "ui/text_line.h"
#include "ui/theme.h"

/// What rows and cards show as a window's title. Pure functions.
namespace ferrowyn::row_title {

/// The display title as one line; the application's name when nothing of the title can be seen.
[[nodiscard]] QString text(const AppWindow& window);
/// The matched characters, in their colour or, on the selection, underlined.
[[nodiscard]] TextEmphasis emphasis(const SwitcherViewModel::Row& row, bool isSelected, const Theme& theme);

}  // namespace ferrowyn::row_title
