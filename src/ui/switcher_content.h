#pragma once

#include "core/texts.h"
#include "input/switcher_panel.h"

namespace ferrowyn {

/// Makes the content that the switcher controller hands to the panel, with this desktop's texts. The table outlives
/// the content. Main thread.
[[nodiscard]] SwitcherContentFactory switcherContentFactory(const TextTable& texts);

}  // namespace ferrowyn
