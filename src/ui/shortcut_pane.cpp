#include "ui/shortcut_pane.h"

#include <QAbstractItemView>
#include <QWidget>
#include <algorithm>
#include <cstddef>

#include "services/preferences.h"
#include "ui/choice_box.h"
#include "ui/key_cap_label.h"
#include "ui/key_lines.h"
#include "ui/setting_binding.h"
#include "ui/settings_group.h"
#include "ui/settings_lines.h"
#include "ui/switch_row.h"
#include "ui/text_label.h"
#include "ui/translated.h"

namespace ferrowyn {

ShortcutPane::ShortcutPane(const TextTable& texts, Preferences& preferences)
    : SettingsPaneView({texts.windows.settings.shortcutTitle, {}}) {
    addTrigger(texts, preferences);
    addKeys(texts, preferences);
}

void ShortcutPane::addTrigger(const TextTable& texts, Preferences& preferences) {
    const WindowTexts& words = texts.windows;
    SettingsGroup& group = addGroup();
    auto* const label = new TextLabel({words.settings.summonWith, {}}, TextStyle::body);
    auto* const choice = new ChoiceBox;
    for (const auto modifier : allSwitcherModifiers) {
        choice->addItem(translated(settings_lines::summonChoice(modifier, words)));
    }
    label->setBuddy(choice);
    choice->setAccessibleName(label->text());
    choice->view()->setAccessibleName(label->text());
    group.addRow(label, choice);
    auto* const note = new TextLabel({words.settings.commandReplacesNote, {}}, TextStyle::note, Tone::secondary);
    QWidget* const noteFrame = group.addNote(note);
    connect(choice, &QComboBox::activated, this, [&preferences](int index) {
        preferences.modifier.set(allSwitcherModifiers.at(static_cast<std::size_t>(index)));
    });
    keep(preferences.modifier.published().subscribe([choice, note, noteFrame](SwitcherModifier modifier) {
        const auto* const found = std::ranges::find(allSwitcherModifiers, modifier);
        choice->setCurrentIndex(static_cast<int>(found - allSwitcherModifiers.begin()));
        const bool isNoted = settings_lines::showsReplacementNote(modifier);
        noteFrame->setVisible(isNoted);
        choice->setAccessibleDescription(isNoted ? note->text() : QString());
    }));

    auto* const onRelease = new SwitchRow({words.settings.confirmOnRelease, {}});
    group.addRow(onRelease);
    auto* const releaseNote =
        new TextLabel({words.settings.confirmOnReleaseNote, {}}, TextStyle::note, Tone::secondary);
    onRelease->setAccessibleDescription(releaseNote->text());
    group.addNote(releaseNote);
    keep(bindSwitch(*onRelease, preferences.confirmOnModifierRelease));
}

void ShortcutPane::addKeys(const TextTable& texts, Preferences& preferences) {
    SettingsGroup& group = addGroup({texts.windows.settings.keysSection, {}});
    std::vector<KeyCapLabel*> caps;
    for (const auto& line : key_lines::whileOpen(preferences.modifier.get(), texts)) {
        caps.push_back(new KeyCapLabel);
        group.addRow(new TextLabel({line.description, {}}, TextStyle::body), caps.back());
    }
    keep(preferences.modifier.published().subscribe([caps, &texts](SwitcherModifier modifier) {
        const auto lines = key_lines::whileOpen(modifier, texts);
        for (std::size_t index = 0; index < lines.size(); ++index) {
            caps.at(index)->setText(QString::fromStdString(lines.at(index).keys));
        }
    }));
}

}  // namespace ferrowyn
