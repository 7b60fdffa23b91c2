#pragma once

#include <vector>

#include "core/switcher_options.h"
#include "ui/settings_pane_view.h"

namespace ferrowyn {

struct TextTable;
class KeyCapLabel;
class Preferences;

/// What opens the switcher, and which keys work in it. Main thread.
class ShortcutPane final : public SettingsPaneView {
    Q_OBJECT

public:
    ShortcutPane(const TextTable& texts, Preferences& preferences);

private:
    void addTrigger(const TextTable& texts, Preferences& preferences);
    void addKeys(const TextTable& texts, Preferences& preferences);
};

}  // namespace ferrowyn
