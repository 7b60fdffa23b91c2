#pragma once

#include "core/published.h"
#include "services/preferences.h"

class QAbstractButton;

namespace ferrowyn {

/// The button shows the setting, and the user's click sets it. The token ends the first half; the setting outlives the
/// button.
[[nodiscard]] Subscription bindSwitch(QAbstractButton& button, Preferences::Setting<bool>& setting);

}  // namespace ferrowyn
