#include "ui/windows_pane.h"

#include "services/preferences.h"
#include "ui/setting_binding.h"
#include "ui/settings_group.h"
#include "ui/settings_lines.h"
#include "ui/switch_row.h"
#include "ui/text_label.h"

namespace ferrowyn {

WindowsPane::WindowsPane(const WindowTexts& texts, Preferences& preferences)
    : SettingsPaneView({texts.settings.windowsTitle, {}}) {
    SettingsGroup& ordering = addGroup({texts.settings.orderingSection, {}});
    auto* const activeFirst = new SwitchRow({texts.settings.activeAppFirst, {}});
    ordering.addRow(activeFirst);
    auto* const orderNote = new TextLabel(TextStyle::note, Tone::secondary);
    ordering.addNote(orderNote);
    keep(bindSwitch(*activeFirst, preferences.showActiveAppWindowsFirst));
    keep(preferences.showActiveAppWindowsFirst.published().subscribe([activeFirst, orderNote, &texts](bool isOn) {
        orderNote->setPhrase({settings_lines::activeAppFirstNote(isOn, texts), {}});
        activeFirst->setAccessibleDescription(orderNote->text());
    }));

    SettingsGroup& include = addGroup({texts.settings.includeSection, {}});
    auto* const minimised = new SwitchRow({texts.settings.minimised, {}});
    include.addRow(minimised);
    keep(bindSwitch(*minimised, preferences.includeMinimized));
    auto* const otherSpaces = new SwitchRow({texts.settings.otherSpaces, {}});
    include.addRow(otherSpaces);
    auto* const spacesNote = new TextLabel({texts.settings.otherSpacesNote, {}}, TextStyle::note, Tone::secondary);
    otherSpaces->setAccessibleDescription(spacesNote->text());
    include.addNote(spacesNote);
    keep(bindSwitch(*otherSpaces, preferences.includeOtherSpaces));
}

}  // namespace ferrowyn
