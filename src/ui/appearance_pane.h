#pragma once

#include "ui/settings_pane_view.h"

namespace ferrowyn {

struct WindowTexts;
class Preferences;

/// How the switcher looks. Main thread.
class AppearancePane final : public SettingsPaneView {
    Q_OBJECT

public:
    AppearancePane(const WindowTexts& texts, Preferences& preferences);

private:
    void addLayouts(const WindowTexts& texts, Preferences& preferences);
    void addRows(const WindowTexts& texts, Preferences& preferences);
};

}  // namespace ferrowyn
