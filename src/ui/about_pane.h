#pragma once

#include "ui/settings_pane_view.h"

namespace ferrowyn {

struct Platform;

/// The about window's content, as a page of the settings. Main thread. The platform outlives it.
class AboutPane final : public SettingsPaneView {
    Q_OBJECT

public:
    explicit AboutPane(const Platform& platform);
};

}  // namespace ferrowyn
