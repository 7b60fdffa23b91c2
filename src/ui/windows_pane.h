#pragma once

#include "ui/settings_pane_view.h"

namespace ferrowyn {

struct WindowTexts;
class Preferences;

/// Which windows the switcher lists, and in which order. Main thread.
class WindowsPane final : public SettingsPaneView {
    Q_OBJECT

public:
    WindowsPane(const WindowTexts& texts, Preferences& preferences);
};

}  // namespace ferrowyn
