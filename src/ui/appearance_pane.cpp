#include "ui/appearance_pane.h"

#include <QHBoxLayout>
#include <QWidget>
#include <cstddef>
#include <vector>

#include "core/window_presentation.h"
#include "services/preferences.h"
#include "ui/accessible_roles.h"
#include "ui/segment_button.h"
#include "ui/setting_binding.h"
#include "ui/settings_group.h"
#include "ui/settings_lines.h"
#include "ui/stepper.h"
#include "ui/switch_row.h"
#include "ui/text_label.h"
#include "ui/translated.h"

namespace ferrowyn {

AppearancePane::AppearancePane(const WindowTexts& texts, Preferences& preferences)
    : SettingsPaneView({texts.settings.appearanceTitle, {}}) {
    addLayouts(texts, preferences);
    addRows(texts, preferences);
}

void AppearancePane::addLayouts(const WindowTexts& texts, Preferences& preferences) {
    constexpr int betweenButtons = 8;
    SettingsGroup& group = addGroup({texts.settings.layoutSection, {}});
    auto* const choices = new QWidget;
    auto* const line = new QHBoxLayout(choices);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(betweenButtons);
    std::vector<SegmentButton*> buttons;
    for (const auto layout : allSwitcherLayouts) {
        auto* const button = new SegmentButton(WindowPresentation::layoutSymbol(layout),
                                               {settings_lines::layoutTitle(layout, texts), {}});
        line->addWidget(button);
        buttons.push_back(button);
        // Toggled, not clicked: that is how the arrow keys choose.
        connect(button, &QAbstractButton::toggled, this, [layout, &preferences](bool isChosen) {
            if (isChosen && preferences.layout.get() != layout) {
                preferences.layout.set(layout);
            }
        });
    }
    group.addInsetRow(choices);
    auto* const description = new TextLabel(TextStyle::note, Tone::secondary);
    group.addNote(description);
    keep(preferences.layout.published().subscribe([buttons, description, &texts](SwitcherLayout chosen) {
        description->setPhrase({settings_lines::layoutDescription(chosen, texts), {}});
        for (std::size_t index = 0; index < buttons.size(); ++index) {
            SegmentButton& button = *buttons[index];
            const SwitcherLayout layout = allSwitcherLayouts.at(index);
            button.setAccessibleDescription(translated(settings_lines::layoutDescription(layout, texts)));
            button.setChecked(layout == chosen);
        }
    }));
}

void AppearancePane::addRows(const WindowTexts& texts, Preferences& preferences) {
    SettingsGroup& group = addGroup();
    auto* const label = new TextLabel(TextStyle::body);
    auto* const stepper = new Stepper(settings_lines::fewestVisibleRows, settings_lines::mostVisibleRows);
    label->setBuddy(stepper);
    group.addRow(label, stepper);
    connect(stepper, &QSpinBox::valueChanged, this, [&preferences](int rows) {
        if (preferences.maximumVisibleRows.get() != rows) {
            preferences.maximumVisibleRows.set(rows);
        }
    });
    keep(preferences.maximumVisibleRows.published().subscribe([label, stepper, &texts](int rows) {
        label->setPhrase(settings_lines::maximumRows(rows, texts));
        stepper->setAccessibleName(label->text());
        stepper->setValue(rows);
    }));

    auto* const hints = new SwitchRow({texts.settings.showHints, {}});
    group.addRow(hints);
    keep(bindSwitch(*hints, preferences.showShortcutHints));
}

}  // namespace ferrowyn
