#pragma once

#include "ui/settings_pane_view.h"
#include "ui/settings_services.h"

namespace ferrowyn {

struct WindowTexts;

/// Launch at login, updates, permissions. Main thread.
class GeneralPane final : public SettingsPaneView {
    Q_OBJECT

public:
    GeneralPane(const WindowTexts& texts, const SettingsServices& services);

private:
    void addLaunchAtLogin(const WindowTexts& texts, LaunchAtLoginService& service);
    void addUpdates(const WindowTexts& texts, const SettingsServices& services);
    void addPermissions(const WindowTexts& texts, AccessibilityAuthorizer& authorizer);
};

}  // namespace ferrowyn
