#pragma once

namespace ferrowyn {

class AccessibilityAuthorizer;
class FavouritesStore;
class IconProvider;
class LaunchAtLoginService;
class Preferences;
class UpdateChecker;

/// What the settings window shows and changes. All of them outlive the window.
struct SettingsServices {
    Preferences& preferences;
    AccessibilityAuthorizer& authorizer;
    LaunchAtLoginService& launchAtLogin;
    FavouritesStore& favourites;
    UpdateChecker& updates;
    IconProvider& icons;
};

}  // namespace ferrowyn
