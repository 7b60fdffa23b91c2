#include "ui/general_pane.h"

#include <QHBoxLayout>
#include <QWidget>
#include <variant>

#include "services/accessibility_authorizer.h"
#include "services/launch_at_login_service.h"
#include "services/preferences.h"
#include "services/update_checker.h"
#include "ui/setting_binding.h"
#include "ui/settings_group.h"
#include "ui/settings_lines.h"
#include "ui/show_status.h"
#include "ui/switch_row.h"
#include "ui/text_label.h"
#include "ui/window_button.h"

namespace ferrowyn {

GeneralPane::GeneralPane(const WindowTexts& texts, const SettingsServices& services)
    : SettingsPaneView({texts.settings.generalTitle, {}}) {
    addLaunchAtLogin(texts, services.launchAtLogin);
    addUpdates(texts, services);
    addPermissions(texts, services.authorizer);
}

void GeneralPane::addLaunchAtLogin(const WindowTexts& texts, LaunchAtLoginService& service) {
    SettingsGroup& group = addGroup();
    auto* const launch = new SwitchRow({texts.settings.launchAtLogin, {}});
    group.addRow(launch);
    auto* const message = new TextLabel(TextStyle::note, Tone::secondary);
    auto* const open = new WindowButton({texts.settings.openLoginItems, {}});
    QWidget* const explanation = group.addRow(message, open);

    const auto follow = [launch, message, open, explanation, &service] {
        using Service = LaunchAtLoginService;
        const auto& state = service.state().get();
        const bool requiresApproval = std::holds_alternative<Service::RequiresApproval>(state);
        launch->setChecked(requiresApproval || std::holds_alternative<Service::Enabled>(state));
        launch->setEnabled(!std::holds_alternative<Service::Unavailable>(state));
        const auto text = service.explanatoryMessage();
        if (text) {
            showStatus(*message, settings_lines::loginItemMessage(*text));
        }
        open->setVisible(requiresApproval);
        explanation->setVisible(text.has_value());
    };
    connect(launch, &QAbstractButton::clicked, this, [follow, &service](bool isOn) {
        service.setEnabled(isOn);
        // A request that changed nothing publishes nothing, and the switch has moved already.
        follow();
    });
    connect(open, &QAbstractButton::clicked, this, [&service] { service.openLoginItemsSettings(); });
    keep(service.state().subscribe([follow](const auto&) { follow(); }));
    keep(service.lastError().subscribe([follow](const auto&) { follow(); }));
}

void GeneralPane::addUpdates(const WindowTexts& texts, const SettingsServices& services) {
    SettingsGroup& group = addGroup({texts.settings.updatesSection, {}});
    auto* const automatic = new SwitchRow({texts.settings.automaticUpdates, {}});
    group.addRow(automatic);
    auto* const note = new TextLabel({texts.settings.automaticUpdatesNote, {}}, TextStyle::note, Tone::secondary);
    automatic->setAccessibleDescription(note->text());
    group.addNote(note);
    keep(bindSwitch(*automatic, services.preferences.automaticUpdateChecks));

    auto* const status = new TextLabel(TextStyle::body);
    auto* const check = new WindowButton({texts.settings.checkNow, {}});
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

void GeneralPane::addPermissions(const WindowTexts& texts, AccessibilityAuthorizer& authorizer) {
    SettingsGroup& group = addGroup({texts.settings.permissionsSection, {}});
    auto* const status = new TextLabel(TextStyle::body);
    auto* const open = new WindowButton({texts.settings.openSettings, {}});
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

}  // namespace ferrowyn
