#pragma once

#include <vector>

#include "core/switcher_options.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/settings_model.h"

namespace ferrowyn {

struct Platform;
struct TextTable;
struct UtilityTexts;
class Preferences;

/// Launch at login, updates, permissions. Main thread.
class GeneralPane final : public SettingsPaneView {
    Q_OBJECT

public:
    GeneralPane(const UtilityTexts& texts, const SettingsServices& services);

private:
    void addLaunchAtLogin(const UtilityTexts& texts, LaunchAtLoginService& service);
    void addUpdates(const UtilityTexts& texts, const SettingsServices& services);
    void addPermissions(const UtilityTexts& texts, AccessibilityAuthorizer& authorizer);
};

/// What opens the switcher, and which keys work in it. Main thread.
class ShortcutPane final : public SettingsPaneView {
    Q_OBJECT

public:
    ShortcutPane(const TextTable& texts, Preferences& preferences);

private:
    void addTrigger(const TextTable& texts, Preferences& preferences);
    void addKeys(const TextTable& texts, Preferences& preferences);
};

/// How the switcher looks. Main thread.
class AppearancePane final : public SettingsPaneView {
    Q_OBJECT

public:
    AppearancePane(const UtilityTexts& texts, Preferences& preferences);

private:
    void addLayouts(const UtilityTexts& texts, Preferences& preferences);
    void addRows(const UtilityTexts& texts, Preferences& preferences);
};

/// Which windows the switcher lists, and in which order. Main thread.
class WindowsPane final : public SettingsPaneView {
    Q_OBJECT

public:
    WindowsPane(const UtilityTexts& texts, Preferences& preferences);
};

/// The about window's content, as a page of the settings. Main thread. The platform outlives it.
class AboutPane final : public SettingsPaneView {
    Q_OBJECT

public:
    explicit AboutPane(const Platform& platform);
};

}  // namespace ferrowyn
