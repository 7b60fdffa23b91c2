#pragma once

#include "ui/settings_lines.h"
#include "ui/text_label.h"

namespace ferrowyn {

/// Shows a line in the label, its symbol in the colour of its tint.
void showStatus(TextLabel& label, const settings_lines::StatusLine& line);

}  // namespace ferrowyn
