#include "ui/windows/settings_panes.h"

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QWidget>
#include <algorithm>
#include <cstddef>
#include <variant>

#include "core/texts.h"
#include "core/window_presentation.h"
#include "platform/platform.h"
#include "services/accessibility_authorizer.h"
#include "services/launch_at_login_service.h"
#include "services/preferences.h"
#include "services/update_checker.h"
#include "ui/common/accessibility.h"
#include "ui/common/translation.h"
#include "ui/windows/about_view.h"
#include "ui/windows/controls.h"
#include "ui/windows/labels.h"

namespace ferrowyn {

namespace {

Tone toneOf(settings_lines::StatusLine::Tint tint) {
    switch (tint) {
        case settings_lines::StatusLine::Tint::good:
            return Tone::success;
        case settings_lines::StatusLine::Tint::attention:
            return Tone::warning;
        case settings_lines::StatusLine::Tint::none:
            break;
    }
    return Tone::secondary;
}

/// Shows the line in the label, its symbol in the colour of its tint.
void showStatus(TextLabel& label, const settings_lines::StatusLine& line) {
    label.setSymbol(line.symbol, toneOf(line.tint));
    label.setPhrase(line.text);
}

}  // namespace

GeneralPane::GeneralPane(const UtilityTexts& texts, const SettingsServices& services)
    : SettingsPaneView({texts.settings.generalTitle, {}}) {
    addLaunchAtLogin(texts, services.launchAtLogin);
    addUpdates(texts, services);
    addPermissions(texts, services.authorizer);
}

void GeneralPane::addLaunchAtLogin(const UtilityTexts& texts, LaunchAtLoginService& service) {
    SettingsGroup& group = addGroup();
    auto* const launch = new SwitchRow({texts.settings.launchAtLogin, {}});
    group.addRow(launch);
    auto* const message = new TextLabel(TextStyle::note, Tone::secondary);
    auto* const open = makeButton({texts.settings.openLoginItems, {}});
    QWidget* const explanation = group.addRow(message, open);

    const auto follow = [launch, message, open, explanation, &service] {
        launch->setChecked(service.startsAtLogin());
        launch->setEnabled(!std::holds_alternative<LaunchAtLoginService::Unavailable>(service.state().get()));
        const auto text = service.explanatoryMessage();
        if (text) {
            showStatus(*message, settings_lines::loginItemMessage(*text));
        }
        open->setVisible(service.requiresApproval());
        explanation->setVisible(text.has_value());
    };
    connect(launch, &QAbstractButton::clicked, this, [follow, &service](bool isOn) {
        service.setEnabled(isOn);
        // A request that changes nothing publishes nothing, but the click has moved the switch.
        follow();
    });
    connect(open, &QAbstractButton::clicked, this, [&service] { service.openLoginItemsSettings(); });
    keep(service.state().subscribe([follow](const auto&) { follow(); }));
    keep(service.lastError().subscribe([follow](const auto&) { follow(); }));
}

void GeneralPane::addUpdates(const UtilityTexts& texts, const SettingsServices& services) {
    SettingsGroup& group = addGroup({texts.settings.updatesSection, {}});
    auto* const automatic = new SwitchRow({texts.settings.automaticUpdates, {}});
    group.addRow(automatic);
    auto* const note = new TextLabel({texts.settings.automaticUpdatesNote, {}}, TextStyle::note, Tone::secondary);
    automatic->setAccessibleDescription(note->text());
    group.addNote(note);
    keep(bindSwitch(*automatic, services.preferences.automaticUpdateChecks));

    auto* const status = new TextLabel(TextStyle::body);
    auto* const check = makeButton({texts.settings.checkNow, {}});
    auto* const checking = new TextLabel({texts.settings.checking, {}}, TextStyle::body, Tone::secondary);
    checking->setWordWrap(false);
    auto* const action = new QWidget;
    auto* const place = new QHBoxLayout(action);
    place->setContentsMargins(0, 0, 0, 0);
    place->addWidget(check);
    place->addWidget(checking);
    group.addRow(status, action);
    UpdateChecker& updates = services.updates;
    if (!updates.hasServer()) {
        automatic->setEnabled(false);
        action->hide();
        showStatus(*status, settings_lines::noUpdateServer(texts));
        return;
    }
    connect(check, &QAbstractButton::clicked, this, [&updates] { updates.check(); });
    keep(updates.state().subscribe([status, check, checking, &texts](const UpdateChecker::State& state) {
        const auto line = settings_lines::updateStatus(state, texts);
        showStatus(*status, line.value_or(settings_lines::StatusLine{}));
        checking->setVisible(!line);
        check->setVisible(line.has_value());
    }));
}

void GeneralPane::addPermissions(const UtilityTexts& texts, AccessibilityAuthorizer& authorizer) {
    SettingsGroup& group = addGroup({texts.settings.permissionsSection, {}});
    auto* const status = new TextLabel(TextStyle::body);
    auto* const open = makeButton({texts.settings.openSettings, {}});
    group.addRow(status, open);
    connect(open, &QAbstractButton::clicked, this, [&authorizer] { authorizer.openAccessibilitySettings(); });
    keep(authorizer.status().subscribe([status, open, &texts, &authorizer](AccessibilityStatus trust) {
        showStatus(*status, settings_lines::permissionStatus(trust, authorizer.canBecomeTrusted(), texts));
        open->setVisible(trust == AccessibilityStatus::notTrusted);
    }));

    auto* const secureInput = new TextLabel(TextStyle::body);
    showStatus(*secureInput, settings_lines::secureInputStatus(texts));
    QWidget* const row = group.addInsetRow(secureInput);
    keep(authorizer.isSecureInputActive().subscribe([row](bool isActive) { row->setVisible(isActive); }));
}

ShortcutPane::ShortcutPane(const TextTable& texts, Preferences& preferences)
    : SettingsPaneView({texts.utility.settings.shortcutTitle, {}}) {
    addTrigger(texts, preferences);
    addKeys(texts, preferences);
}

void ShortcutPane::addTrigger(const TextTable& texts, Preferences& preferences) {
    const UtilityTexts& words = texts.utility;
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
    SettingsGroup& group = addGroup({texts.utility.settings.keysSection, {}});
    std::vector<TextLabel*> caps;
    for (const auto& line : key_lines::whileOpen(preferences.modifier.get(), texts)) {
        caps.push_back(TextLabel::keyCap());
        group.addRow(new TextLabel({line.description, {}}, TextStyle::body), caps.back());
    }
    keep(bindKeyCaps(caps, preferences.modifier.published(),
                     [&texts](SwitcherModifier trigger) { return key_lines::whileOpen(trigger, texts); }));
}

AppearancePane::AppearancePane(const UtilityTexts& texts, Preferences& preferences)
    : SettingsPaneView({texts.settings.appearanceTitle, {}}) {
    addLayouts(texts, preferences);
    addRows(texts, preferences);
}

void AppearancePane::addLayouts(const UtilityTexts& texts, Preferences& preferences) {
    constexpr int betweenButtons = 8;
    SettingsGroup& group = addGroup({texts.settings.layoutSection, {}});
    auto* const choices = new QWidget;
    auto* const line = new QHBoxLayout(choices);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(betweenButtons);
    std::vector<QRadioButton*> buttons;
    for (const auto layout : allSwitcherLayouts) {
        auto* const button = makeSegment(WindowPresentation::layoutSymbol(layout), {title(layout, texts), {}});
        line->addWidget(button);
        buttons.push_back(button);
        // `toggled` and not `clicked`, because the arrow keys emit only the former.
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
            QRadioButton& button = *buttons[index];
            const SwitcherLayout layout = allSwitcherLayouts.at(index);
            button.setAccessibleDescription(translated(settings_lines::layoutDescription(layout, texts)));
            button.setChecked(layout == chosen);
        }
    }));
}

void AppearancePane::addRows(const UtilityTexts& texts, Preferences& preferences) {
    SettingsGroup& group = addGroup();
    auto* const label = new TextLabel(TextStyle::body);
    auto* const stepper = makeStepper(Preferences::fewestVisibleRows, Preferences::mostVisibleRows);
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

WindowsPane::WindowsPane(const UtilityTexts& texts, Preferences& preferences)
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

AboutPane::AboutPane(const Platform& platform) : SettingsPaneView({platform.texts.utility.settings.aboutTitle, {}}) {
    constexpr int iconSize = 96;
    addWidget(new AboutContent(platform, iconSize));
}

}  // namespace ferrowyn
